# Writes the report's page, with its style sheet and its script in their places, as a C++ source:
#   cmake -DFOLDER=... -DOUT=... -P embed.cmake
# As numbers: compilers limit the length of a literal.
set(bytes "")
foreach(file page.html page.css page.js)
  file(READ ${FOLDER}/${file} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," numbers "${hex}")
  string(REPLACE "." "_" name ${file})
  string(APPEND bytes "static constexpr unsigned char ${name}[] = {${numbers}};\n")
endforeach()
file(WRITE ${OUT} "#include \"report_page.h\"\n\nnamespace ZoTool {\n\n${bytes}
template <std::size_t SIZE>
static std::string_view TextOf(const unsigned char (&bytes)[SIZE]) {
    return {reinterpret_cast<const char*>(bytes), SIZE};
}

std::string_view PageHtml() { return TextOf(page_html); }
std::string_view PageCss() { return TextOf(page_css); }
std::string_view PageJs() { return TextOf(page_js); }

} // namespace ZoTool
")
