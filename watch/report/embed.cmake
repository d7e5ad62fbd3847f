# Writes the source file OUTPUT, in which the files of the report's page are strings, and the hashes by
# which its policy knows them. LIBRARY is the file of Dygraphs, or nothing. Run as a script.

# Puts the bytes that the hexadecimal digits `hex` of a SHA-256 stand for into `result`, in base64.
function(to_base64 hex result)
  set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  # 32 bytes are ten groups of three, and two bytes, whose last sign is an equals sign.
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

# Appends the definition of `name` with `text` to `source`.
function(add_text name text)
  string(APPEND source "const std::string_view ${name} = R\"embedded(${text})embedded\";\n")
  set(source "${source}" PARENT_SCOPE)
endfunction()

# The same with its hash, of which there is none where there is no text.
function(add_hashed name text)
  add_text(${name} "${text}")
  if(text STREQUAL "")
    set(hash "")
  else()
    string(SHA256 hash "${text}")
    to_base64(${hash} hash)
  endif()
  add_text(${name}Hash "${hash}")
  set(source "${source}" PARENT_SCOPE)
endfunction()

file(READ ${DIRECTORY}/page.html page)
file(READ ${DIRECTORY}/report.css style)
set(library "")
set(explorer "")
if(LIBRARY)
  file(READ ${LIBRARY} library)
  file(READ ${DIRECTORY}/explorer.js explorer)
  # What it names is not there.
  string(REGEX REPLACE "\n//# sourceMappingURL=[^\n]*" "" library "${library}")
endif()

set(source "// Written by embed.cmake.\n#include \"report/resources.h\"\n\nnamespace watch {\n\n")
add_text(kPage "${page}")
add_hashed(kStyle "${style}")
add_hashed(kLibrary "${library}")
add_hashed(kExplorer "${explorer}")
file(WRITE ${OUTPUT} "${source}\n}  // namespace watch\n")
