# Writes files as byte arrays: cmake -DOUT=... -DFOLDER=... -P Embed.cmake
file(WRITE ${OUT}.new "#include \"Providers/DemoMedia.h\"\n\nnamespace korvi::service {\n")
foreach(pair IN ITEMS demoVideo=demo.webm demoPdf=demo.pdf)
    string(REPLACE "=" ";" pair ${pair})
    list(GET pair 0 name)
    list(GET pair 1 file)
    file(READ ${FOLDER}/${file} bytes HEX)
    string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
    file(APPEND ${OUT}.new
        "namespace {\nconstexpr unsigned char ${name}Bytes[] = {${bytes}};\n}\n"
        "std::string_view ${name}() {\n"
        "    return {reinterpret_cast<const char*>(${name}Bytes), sizeof ${name}Bytes};\n}\n")
endforeach()
file(APPEND ${OUT}.new "}\n")
file(RENAME ${OUT}.new ${OUT})
