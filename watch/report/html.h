// HTML, made of elements. Whatever text goes into one is escaped, wherever it comes from.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace watch {

struct Attribute {
  std::string_view name;
  std::string value;
};
using Attributes = std::initializer_list<Attribute>;

/// A piece of a page: text, an element, or several of both.
class Html {
 public:
  Html() = default;
  // Text becomes HTML by itself, so that it stands between elements as it is.
  Html(std::string_view text);  // NOLINT(google-explicit-constructor)
  Html(const std::string& text) : Html(std::string_view(text)) {}  // NOLINT
  Html(const char* text) : Html(std::string_view(text)) {}         // NOLINT
  Html(std::initializer_list<Html> pieces);

  Html& operator+=(const Html& other);

  const std::string& source() const { return source_; }

 private:
  friend Html el(std::string_view name, Attributes attributes, const Html& content);
  friend Html shape(std::string_view name, Attributes attributes);
  friend Html jsonData(std::string_view json);

  std::string source_;
};

/// `<name attributes>content</name>`. An attribute without a value is left out.
Html el(std::string_view name, Attributes attributes, const Html& content = {});
/// `<name attributes/>`, for what a picture is drawn of.
Html shape(std::string_view name, Attributes attributes);
/// JSON for a script of the page, which reads it and does not run it. Nothing in it ends the
/// element.
Html jsonData(std::string_view json);

}  // namespace watch
