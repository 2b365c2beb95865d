// k7nav morse: a text in Morse code.

#include "app_common/verb.h"

#include <k7/navdata/morse_code.h>

#include <cstdio>

namespace {

class Morse : public Verb {
 public:
  std::string TakeArgument(const std::string& argument) override {
    if (!m_text.empty()) m_text += ' ';
    m_text += argument;
    return {};
  }
  std::string Run() override {
    K7String code;
    if (m_text.empty()) return "morse needs a text, as SEA";
    if (K7MorseCode::GetMorseCode(m_text.c_str(), code) != 0) return "there is no memory for the code";
    std::puts(code);
    return {};
  }

 private:
  std::string m_text;
};

}  // namespace

std::unique_ptr<Verb> MakeMorse() { return std::make_unique<Morse>(); }
