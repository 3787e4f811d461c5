# Writes a source that holds the files of the page: cmake -DOUT=FILE -DFOLDER=web -P embed.cmake

set(typehtml "text/html; charset=utf-8")
set(typecss "text/css; charset=utf-8")
set(typejs "text/javascript; charset=utf-8")
set(typesvg "image/svg+xml")

file(GLOB files ${FOLDER}/*.html ${FOLDER}/*.css ${FOLDER}/*.js ${FOLDER}/*.svg)
set(rows "")
foreach(file ${files})
  file(READ ${file} bytes)
  string(FIND "${bytes}" ")quillpost\"" clash)
  if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${file} holds what ends its text in the program")
  endif()
  get_filename_component(name ${file} NAME)
  get_filename_component(ending ${file} LAST_EXT)
  string(SUBSTRING ${ending} 1 -1 ending)
  string(APPEND rows "    {\"/${name}\", \"${type${ending}}\", R\"quillpost(${bytes})quillpost\"},\n")
endforeach()
file(WRITE ${OUT} "#include \"board/page/web_files.h\"

namespace quillpost::board {

std::span<const WebFile> webFiles() {
  static constexpr WebFile files[] = {
${rows}  };
  return files;
}

}  // namespace quillpost::board
")
