#include "report/html.h"

namespace watch {

namespace {

std::string_view escaped(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

void append(std::string& source, std::string_view text) {
  for (const char character : text) {
    const std::string_view instead = escaped(character);
    instead.empty() ? source.append(1, character) : source.append(instead);
  }
}

std::string openingTag(std::string_view name, Attributes attributes) {
  std::string tag = "<";
  tag += name;
  for (const Attribute& attribute : attributes) {
    if (!attribute.value.empty()) {
      tag += ' ';
      tag += attribute.name;
      tag += "=\"";
      append(tag, attribute.value);
      tag += '"';
    }
  }
  return tag;
}

}  // namespace

Html::Html(std::string_view text) {
  append(source_, text);
}

Html::Html(std::initializer_list<Html> pieces) {
  for (const Html& piece : pieces) {
    source_ += piece.source_;
  }
}

Html& Html::operator+=(const Html& other) {
  source_ += other.source_;
  return *this;
}

Html el(std::string_view name, Attributes attributes, const Html& content) {
  Html element;
  element.source_ = openingTag(name, attributes);
  element.source_ += '>';
  element.source_ += content.source_;
  element.source_ += "</";
  element.source_ += name;
  element.source_ += '>';
  return element;
}

Html jsonData(std::string_view json) {
  Html element;
  element.source_ = "<script type=\"application/json\">";
  for (const char character : json) {
    // In JSON, it only stands in strings.
    character == '<' ? element.source_.append("\\u003c") : element.source_.append(1, character);
  }
  element.source_ += "</script>";
  return element;
}

Html shape(std::string_view name, Attributes attributes) {
  Html element;
  element.source_ = openingTag(name, attributes) + "/>";
  return element;
}

}  // namespace watch
