#include <k7/navdata/morse_code.h>

#include <algorithm>
#include <cstring>

namespace {

// ITU-R M.1677-1, part I, 1.1.1 and 1.1.2.
constexpr const char* DIGITS[] = {"-----", ".----", "..---", "...--", "....-",
                                  ".....", "-....", "--...", "---..", "----."};
constexpr const char* LETTERS[] = {".-",   "-...", "-.-.", "-..",  ".",   "..-.", "--.",  "....", "..",
                                   ".---", "-.-",  ".-..", "--",   "-.",  "---",  ".--.", "--.-", ".-.",
                                   "...",  "-",    "..-",  "...-", ".--", "-..-", "-.--", "--.."};
static_assert(sizeof LETTERS / sizeof *LETTERS == 26);

const char* Symbols(char c) {
  if (c >= '0' && c <= '9') return DIGITS[c - '0'];
  if (c >= 'A' && c <= 'Z') return LETTERS[c - 'A'];
  if (c >= 'a' && c <= 'z') return LETTERS[c - 'a'];
  return "";
}

}  // namespace

K7MorseCode::K7MorseCode(const char* text) { GetMorseCode(text, m_code); }
K7MorseCode::K7MorseCode(K7String& text) : K7MorseCode(static_cast<const char*>(text)) {}

int K7MorseCode::GetMorseCode(K7String& out) const { return std::min(out.Create(m_code), 0); }

int K7MorseCode::GetMorseCode(char c, K7String& out) {
  const char* symbols = Symbols(c);
  static constexpr const char* FORMATS[] = {"", "%C", "%C %C", "%C %C %C", "%C %C %C %C", "%C %C %C %C %C"};
  const size_t count = std::strlen(symbols);
  out.Clear();
  const int length =
      out.Format(FORMATS[count], symbols[0], count > 1 ? symbols[1] : 0, count > 2 ? symbols[2] : 0,
                 count > 3 ? symbols[3] : 0, count > 4 ? symbols[4] : 0);
  return std::min(length, 0);
}

int K7MorseCode::GetMorseCode(const char* text, K7String& out) {
  K7String code, character;  // apart from `out`, which may be the text itself
  for (const char* c = text; c && *c; c++) {
    int err = GetMorseCode(*c, character);
    if (!err && c != text) err = code += "   ";
    if (!err) err = code += character;
    if (err) return err;
  }
  return std::min(out.Create(code), 0);
}

int K7MorseCode::GetMorseCode(K7String& text, K7String& out) {
  return GetMorseCode(static_cast<const char*>(text), out);
}
