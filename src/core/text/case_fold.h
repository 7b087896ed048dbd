#pragma once

#include <string>
#include <string_view>

namespace finora {

// Case-insensitive comparison on Windows-1251 bytes: Latin and Cyrillic capitals (Bulgarian,
// Russian, Serbian, Macedonian, Ukrainian and Belarusian letters alike) fold to their small
// letters; every other byte is left as it is.
unsigned char foldCase(unsigned char byte);
std::string foldCase(std::string_view bytes);
// The other way: small letters to their capitals, for texts shown in capitals only.
unsigned char upperCase(unsigned char byte);
std::string upperCase(std::string_view bytes);

} // namespace finora
