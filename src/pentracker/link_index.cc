#include "pentracker/link_index.h"

#include <algorithm>
#include <bit>
#include <cstddef>

#include "pentracker/mask_runs.h"

namespace nox::pentracker {

namespace {

// Comparing this many blobs costs about as much as one look into the index.
constexpr int kFirstTries = 16;

std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

void LinkIndex::start(BlobSpan earlier) {
  earlier_ = earlier;
  open_.assign(at(words_of(earlier.count)), ~std::uint64_t{0});
  const std::int32_t spare = words_of(earlier.count) * kWordBits - earlier.count;
  open_.back() >>= spare;
  first_open_word_ = 0;
  built_ = false;
}

void LinkIndex::link(Blob *blob) {
  const BlobShape shape(*blob);
  LinkTaker taker(blob);
  const std::int32_t from = try_first(*blob, shape, &taker);
  if (from < earlier_.count) {
    if (!built_) build();
    candidates_.clear();
    near_.find(*blob, shape, {from, taker.best()}, &candidates_);
    shapes_.find(shape, {from, taker.best()}, &candidates_);
    take_candidates(&taker);
  }
  taker.finish();
}

std::int32_t LinkIndex::try_first(const Blob &blob, const BlobShape &shape, LinkTaker *taker) {
  const float highest = highest_score(shape.count, shape.inverse_count);
  std::int32_t index = next_open(0);
  for (int tries = 0; tries < kFirstTries && index < earlier_.count; ++tries) {
    const Blob &candidate = earlier_.blobs[index];
    const float score = match_score(candidate, blob, shape);
    if (taker->wants(candidate, score)) take(taker, index, score);
    if (taker->best() >= highest) return earlier_.count;
    index = next_open(index + 1);
  }
  return index;
}

void LinkIndex::take(LinkTaker *taker, std::int32_t index, float score) {
  taker->take(earlier_.blobs + index, score);
  if (is_closed(index, score)) {
    open_[at(index / kWordBits)] &= ~(std::uint64_t{1} << (index % kWordBits));
  }
  if (!built_) return;
  near_.set_score(index, score);
  shapes_.set_score(index, score);
}

// Takes from the candidates those that score higher than all before them in the list, first to
// last: looked for from the end, each is the highest of those that stand before the one after it.
void LinkIndex::take_candidates(LinkTaker *taker) {
  chain_.clear();
  while (!candidates_.empty()) {
    LinkCandidate highest = candidates_.front();
    for (const LinkCandidate &c : candidates_) {
      if (c.score > highest.score || (c.score == highest.score && c.index < highest.index)) {
        highest = c;
      }
    }
    chain_.push_back(highest);
    std::erase_if(candidates_, [&](const LinkCandidate &c) { return c.index >= highest.index; });
  }
  for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
    take(taker, link->index, link->score);
  }
}

void LinkIndex::build() {
  near_.build(earlier_);
  shapes_.build(earlier_);
  built_ = true;
}

bool LinkIndex::is_closed(std::int32_t index, float score) const {
  const auto count = static_cast<float>(earlier_.blobs[index].pixel_count);
  return score >= highest_score(count, 1.0F / count);
}

// The first open blob at `index` or behind it; the list's length when there is none.
std::int32_t LinkIndex::next_open(std::int32_t index) {
  const std::int32_t words = words_of(earlier_.count);
  while (first_open_word_ < words && open_[at(first_open_word_)] == 0) ++first_open_word_;
  std::int32_t word = index / kWordBits;
  if (word < first_open_word_) {
    word = first_open_word_;
    index = word * kWordBits;
  }
  if (word >= words) return earlier_.count;
  std::uint64_t bits = open_[at(word)] & (~std::uint64_t{0} << (index % kWordBits));
  while (bits == 0) {
    if (++word == words) return earlier_.count;
    bits = open_[at(word)];
  }
  return word * kWordBits + std::countr_zero(bits);
}

}  // namespace nox::pentracker
