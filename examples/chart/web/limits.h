// What the server gives one client at most. Whoever asks for more is refused before anything is allocated.
#pragma once

#include <cstddef>

inline constexpr size_t MAX_TARGET_BYTES = 8192;   // path and query as they are sent
inline constexpr size_t MAX_PARAMETERS = 128;      // of a query
inline constexpr size_t MAX_HEADER_BYTES = 24576;  // of a request, with its target
inline constexpr unsigned MAX_CONNECTIONS = 512;
inline constexpr unsigned MAX_CONNECTIONS_OF_ADDRESS = 64;  // not for this machine's own
inline constexpr unsigned IDLE_SECONDS = 30;

inline constexpr size_t MAX_QUEUE = 256;        // requests that wait for a thread that draws
inline constexpr double MAX_WAIT_SECONDS = 20;  // no one waits longer for a map to be begun
inline constexpr int RETRY_SECONDS = 2;

// Of a picture, in pixels of the screen. Those who name a greatest width and height by themselves, whatever
// the other is, have the side of the largest square.
inline constexpr int MAX_PICTURE_SIDE = 8192;
inline constexpr int MAX_SQUARE_SIDE = 4096;
inline constexpr int MAX_PICTURE_PIXELS = MAX_SQUARE_SIDE * MAX_SQUARE_SIDE;
