// K7MorseCode: identifiers of navaids as dots and dashes.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

/// International Morse code (ITU-R M.1677-1) of the letters, without regard to case, and digits of a text.
/// Symbols of a character are one blank apart, characters three; a character without a code leaves its place
/// empty, so that a blank shows as a wider gap.
class K7_API K7MorseCode {
 public:
  static constexpr unsigned MC_DOT = 0x2E;
  static constexpr unsigned MC_DASH = 0x2D;

  /// Keeps the code of `text`; of null it is empty.
  explicit K7MorseCode(const char* text);
  explicit K7MorseCode(K7String& text);

  /// Copies the kept code into `out`. 0 or K7_ERR_MEMORY, as of all below.
  int GetMorseCode(K7String& out) const;
  /// Replaces `out` with the code of a character; empty for one without a code.
  static int GetMorseCode(char c, K7String& out);
  /// Replaces `out` with the code of a text; empty for null.
  static int GetMorseCode(const char* text, K7String& out);
  static int GetMorseCode(K7String& text, K7String& out);

 private:
  K7String m_code;
};
