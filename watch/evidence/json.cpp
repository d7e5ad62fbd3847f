#include "evidence/json.h"

#include "evidence/text.h"

namespace watch {

using rapidjson::Value;

Json Json::operator[](const char* key) const {
  if (!isThere() || !value_->IsObject()) {
    return Json(nullptr);
  }
  const auto member = value_->FindMember(key);
  return Json(member == value_->MemberEnd() ? nullptr : &member->value);
}

Json Json::first() const {
  return Json(isThere() && value_->IsArray() && !value_->Empty() ? value_->Begin() : nullptr);
}

std::vector<Json> Json::elements() const {
  std::vector<Json> elements;
  if (isThere() && value_->IsArray()) {
    elements.reserve(value_->Size());
    for (const Value& element : value_->GetArray()) {
      elements.emplace_back(&element);
    }
  }
  return elements;
}

std::optional<double> Json::number() const {
  return isThere() && value_->IsNumber() ? std::optional(value_->GetDouble()) : std::nullopt;
}

std::optional<std::int64_t> Json::integer() const {
  return isThere() && value_->IsInt64() ? std::optional(value_->GetInt64()) : std::nullopt;
}

std::string Json::text() const {
  return isThere() && value_->IsString()
             ? printable({value_->GetString(), value_->GetStringLength()})
             : "";
}

Json parseObject(std::string_view text, rapidjson::Document& document) {
  // RapidJSON would take a NUL for the end.
  if (text.find('\0') != std::string_view::npos) {
    return Json(nullptr);
  }
  document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  return Json(document.HasParseError() || !document.IsObject() ? nullptr : &document);
}

}  // namespace watch
