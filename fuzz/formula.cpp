// The formula lexer and parser, fed any text after "=".
#include <cstddef>
#include <cstdint>
#include <string>

#include "sheethost/formula_lexer.h"
#include "sheethost/formula_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string body(reinterpret_cast<const char*>(data), size);
    sheethost::formula::Tokenize(body);
    sheethost::formula::Parse("=" + body);
    return 0;
}
