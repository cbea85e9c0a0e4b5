# Writes a C++ source that holds text files as character arrays, one array per group, the files
# of a group joined in the order given. Run at build time:
#   cmake -DOUT=<file.cpp> -DGROUPS=<name=file|file,name=file> -P embed_text.cmake
# Bytes go out as numbers, so no character of a script can end the array early.
string(REPLACE "," ";" groups "${GROUPS}")
set(text "// Generated from src/script/library at build time; edit the .vbs files there.\n")
string(APPEND text "namespace qv::embedded {\n")
foreach(group ${groups})
  string(REGEX REPLACE "=.*$" "" name "${group}")
  string(REGEX REPLACE "^[^=]*=" "" files "${group}")
  string(REPLACE "|" ";" files "${files}")
  string(APPEND text "extern const char ${name}[];\nconst char ${name}[] = {\n")
  foreach(file ${files})
    file(READ "${file}" hex HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," hex "${hex}")
    string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" hex "${hex}")
    string(APPEND text "${hex}\n")
  endforeach()
  string(APPEND text "0};\n")
endforeach()
string(APPEND text "}  // namespace qv::embedded\n")
file(WRITE "${OUT}.tmp" "${text}")
file(COPY_FILE "${OUT}.tmp" "${OUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUT}.tmp")
