# Writes the source file OUTPUT, in which the files of the report's page are strings, and the hashes by
# which its policy knows them. Run as a script.

# Puts the bytes that the hexadecimal digits `hex` stand for into `result`, in base64.
function(to_base64 hex result)
  set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  # SHA-256 has 32 bytes: ten groups of three, and two bytes, which one sign stands in for.
  set(hex ${hex}00)
  set(text)
  foreach(place RANGE 0 60 6)
    string(SUBSTRING ${hex} ${place} 6 group)
    foreach(shift 18 12 6 0)
      math(EXPR digit "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING ${alphabet} ${digit} 1 sign)
      string(APPEND text ${sign})
    endforeach()
  endforeach()
  string(REGEX REPLACE ".$" = text ${text})
  set(${result} ${text} PARENT_SCOPE)
endfunction()

# Appends the definition of `name` with `text`. A compiler need not take a literal of more than 65,536
# characters.
function(add_text name text)
  string(APPEND source "const std::string_view ${name} = R\"embedded(${text})embedded\";\n")
  set(source "${source}" PARENT_SCOPE)
endfunction()

set(source "// Written by embed.cmake.\n#include \"report/resources.h\"\n\nnamespace watch {\n\n")
file(READ ${DIRECTORY}/page.html page)
add_text(kPage "${page}")
file(READ ${DIRECTORY}/report.css style)
add_text(kStyle "${style}")
string(SHA256 style_hash "${style}")
to_base64(${style_hash} style_hash)
add_text(kStyleHash ${style_hash})
file(WRITE ${OUTPUT} "${source}\n}  // namespace watch\n")
