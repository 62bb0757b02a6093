#ifndef TAVCLIENT_FUZZ_CHUNKSTREAM_H
#define TAVCLIENT_FUZZ_CHUNKSTREAM_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// The framer harness's input: a run of chunks, each a length byte L, a repeat byte R and L
// bytes, which are one read. A repeat byte from 0xFC up feeds the read 2^(R - 0xFB) times in a
// row (2 to 16), so that a small input can stand for a stream past the harness's size limit
// while an input of 4 KB feeds at most 64 KB. A short last chunk takes what is left.
struct Chunk {
  const char* bytes;
  std::size_t size;
  std::size_t times;
};

constexpr std::uint8_t kRepeatFrom = 0xFC;

inline std::vector<Chunk> ReadChunks(const std::uint8_t* data, std::size_t size) {
  std::vector<Chunk> chunks;
  std::size_t at = 0;
  while (size - at >= 2) {
    const std::size_t length = std::min<std::size_t>(data[at], size - at - 2);
    const std::uint8_t repeat = data[at + 1];
    const std::size_t times =
        repeat < kRepeatFrom ? 1 : std::size_t{1} << (repeat - kRepeatFrom + 1);
    chunks.push_back({reinterpret_cast<const char*>(data) + at + 2, length, times});
    at += 2 + length;
  }
  return chunks;
}

#endif
