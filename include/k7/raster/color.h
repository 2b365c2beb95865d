// K7Color: one colour.
#pragma once

#include <k7/export.h>

#include <cstdint>

/// One colour with straight alpha, 255 opaque. It is 32 bits wide and lies in memory as the bytes blue,
/// green, red, alpha, so that an array of colours is an array of 0xAARRGGBB, which `K7Grfx::Image` draws.
class K7_API K7Color {
 public:
  /// Black, fully transparent.
  constexpr K7Color() = default;
  constexpr K7Color(uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255) : m_b(b), m_g(g), m_r(r), m_a(a) {}
  /// Takes 0xAARRGGBB.
  constexpr explicit K7Color(uint32_t bgra)
      : m_b(static_cast<uint8_t>(bgra)),
        m_g(static_cast<uint8_t>(bgra >> 8)),
        m_r(static_cast<uint8_t>(bgra >> 16)),
        m_a(static_cast<uint8_t>(bgra >> 24)) {}

  constexpr uint8_t R() const { return m_r; }
  constexpr uint8_t G() const { return m_g; }
  constexpr uint8_t B() const { return m_b; }
  constexpr uint8_t A() const { return m_a; }

  /// \name As integers
  /// The letters name the bytes in the order in which they lie in memory, the lowest of the number first.
  /// @{
  /// 0x00RRGGBB: without the alpha.
  constexpr uint32_t BGR() const { return Word(m_b, m_g, m_r, 0); }
  /// 0xAARRGGBB.
  constexpr uint32_t BGRA() const { return Word(m_b, m_g, m_r, m_a); }
  /// 0xRRGGBBAA.
  constexpr uint32_t ABGR() const { return Word(m_a, m_b, m_g, m_r); }
  /// 0xAABBGGRR.
  constexpr uint32_t RGBA() const { return Word(m_r, m_g, m_b, m_a); }
  /// @}

  constexpr bool operator==(const K7Color& other) const = default;

 private:
  static constexpr uint32_t Word(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3) {
    return uint32_t{b0} | uint32_t{b1} << 8 | uint32_t{b2} << 16 | uint32_t{b3} << 24;
  }

  uint8_t m_b = 0;
  uint8_t m_g = 0;
  uint8_t m_r = 0;
  uint8_t m_a = 0;
};
static_assert(sizeof(K7Color) == 4);
