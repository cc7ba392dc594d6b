// The readers that --reader names.
#ifndef NOX_VISUALS_READERS_READERS_H_
#define NOX_VISUALS_READERS_READERS_H_

#include <memory>
#include <string>
#include <vector>

#include "nox-visuals/readers/reader.h"

namespace nox::app {

struct Readers {
  std::unique_ptr<Reader> fast;               // for every frame of a live stream; null: none
  std::vector<std::unique_ptr<Reader>> slow;  // for as many of its frames as there is time for
};

// The words of --reader, in the order of its help.
std::vector<std::string> reader_words();

// Whether ZXing was there when the program was built; "all" goes without it where it was not.
bool built_with_zxing();

// For a word of reader_words().
Readers make_readers(const std::string &word);

// What all of them see in a picture, each code once, said to be of the first reader that saw it.
std::vector<Code> read_with_all(const Readers &readers, const qr::Luma &picture);

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_READERS_H_
