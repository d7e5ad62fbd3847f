// Reads members out of JSON. One of another kind than is asked for is taken for missing.
#pragma once

#include <cstdint>
#include <optional>
#include <rapidjson/document.h>
#include <string>
#include <string_view>
#include <vector>

namespace watch {

/// A value in a document, or nothing. What is in nothing is nothing.
class Json {
 public:
  explicit Json(const rapidjson::Value* value) : value_(value) {}

  /// The member of an object.
  Json operator[](const char* key) const;
  /// The first element of an array.
  Json first() const;
  /// All elements of an array.
  std::vector<Json> elements() const;

  bool isThere() const { return value_ != nullptr; }
  bool isTrue() const { return isThere() && value_->IsTrue(); }
  std::optional<double> number() const;
  std::optional<std::int64_t> integer() const;
  /// A whole number from 0 on that `Number` holds.
  template <class Number>
  std::optional<Number> count() const {
    return isThere() && value_->IsUint64() &&
                   value_->GetUint64() <= std::numeric_limits<Number>::max()
               ? std::optional(static_cast<Number>(value_->GetUint64()))
               : std::nullopt;
  }
  /// As it may be shown. Empty when it is nothing.
  std::string text() const;

 private:
  const rapidjson::Value* value_;
};

/// Parses `text` into `document`, without recursion: its depth is its writer's. Returns the object
/// that it is as a whole, or nothing.
Json parseObject(std::string_view text, rapidjson::Document& document);

}  // namespace watch
