// The looks at columns of blobs against comparing one by one, for every instruction set at hand.
#include "pentracker/link_kernels.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "hwy/tests/hwy_gtest.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

using pentracker::DistantRows;
using pentracker::LinkCandidate;
using pentracker::LinkColumns;
using pentracker::LinkQuery;
using pentracker::LinkRows;
using pentracker::LinkWalk;

Blob random_blob(std::int32_t largest, Random *random) {
  Blob blob{};
  blob.width = random->between(1, largest);
  blob.height = random->between(1, largest);
  blob.pixel_count = random->between(1, blob.width * blob.height);
  blob.centre_x = static_cast<float>(random->between(0, 180)) * 0.5F;
  blob.centre_y = static_cast<float>(random->between(0, 120)) * 0.5F;
  return blob;
}

// Blobs of which some have no expected place and some a successor, a few of them the best possible.
struct Table {
  Table(std::int32_t count, std::int32_t largest, Random *random) : blobs(at(count)) {
    columns.resize(count);
    for (std::int32_t i = 0; i < count; ++i) {
      Blob &blob = blobs[at(i)] = random_blob(largest, random);
      if (random->chance(0.8)) blob.previous = &blob;
      blob.predicted_x = static_cast<float>(random->between(-50, 400)) * 0.25F;
      blob.predicted_y = static_cast<float>(random->between(-50, 300)) * 0.25F;
      if (random->chance(0.5)) {
        blob.successor_score = 0.1F * static_cast<float>(random->between(0, 10));
      }
      columns.put(i, i, blob);
    }
  }

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

  std::vector<Blob> blobs;
  LinkColumns columns;
};

// What a walk takes: row by row, each that scores above all before it and above what it is taken
// for.
std::vector<LinkCandidate> plain_walk(const Table &table, const LinkQuery &query, LinkRows rows,
                                      float best) {
  std::vector<LinkCandidate> taken;
  for (std::int32_t row = rows.begin; row < rows.end; ++row) {
    const Blob &blob = table.blobs[Table::at(row)];
    const float score = pentracker::match_score(blob, query);
    if (score <= best || score <= blob.successor_score) continue;
    taken.push_back({row, score});
    best = score;
  }
  return taken;
}

// Walks over the rows, in two stages, and compares what is taken with a walk one by one.
template <typename Walk>
void expect_same_walk(const Table &table, LinkRows rows, float best,
                      const std::vector<LinkCandidate> &plain, const Walk &walk) {
  std::vector<LinkCandidate> taken(Table::at(table.columns.size));
  LinkWalk state{rows.begin, best, taken.data()};
  const std::int32_t middle = (rows.begin + rows.end) / 2;
  walk(middle, &state);
  if (state.best < 1.0F) {
    EXPECT_EQ(state.row, middle);
  }
  walk(rows.end, &state);
  ASSERT_EQ(state.next - taken.data(), static_cast<std::ptrdiff_t>(plain.size()));
  for (std::size_t i = 0; i < plain.size(); ++i) {
    EXPECT_EQ(taken[i].index, plain[i].index);
    EXPECT_EQ(taken[i].score, plain[i].score);
  }
  EXPECT_EQ(state.best, plain.empty() ? best : plain.back().score);
}

LinkRows random_rows(std::int32_t count, Random *random) {
  const std::int32_t begin = random->between(0, count);
  return {begin, random->between(begin, count)};
}

class LinkKernelsTest : public hwy::TestWithParamTarget {
 protected:
  template <typename Check>
  void for_many(const Check &check) {
    Random random(21);
    for (int i = 0; i < (quick() ? 20 : 1500); ++i) {
      SCOPED_TRACE("table " + std::to_string(i));
      const Table table(random.between(1, 90), random.between(1, 6), &random);
      const LinkQuery query(random_blob(6, &random));
      const float best =
          random.chance(0.5) ? 0.0F : 0.01F * static_cast<float>(random.between(0, 99));
      ASSERT_NO_FATAL_FAILURE(check(table, query, random_rows(table.columns.size, &random), best));
    }
  }
};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(LinkKernelsTest);

TEST_P(LinkKernelsTest, WalkAllTakesWhatAWalkOneByOneTakes) {
  for_many([](const Table &table, const LinkQuery &query, LinkRows rows, float best) {
    const std::vector<LinkCandidate> plain = plain_walk(table, query, rows, best);
    expect_same_walk(table, rows, best, plain, [&](std::int32_t limit, LinkWalk *walk) {
      pentracker::walk_all(table.columns, query, limit, 1.0F, walk);
    });
  });
}

// Where no blob is near, both walks take the same.
TEST_P(LinkKernelsTest, WalkDistantTakesWhatAWalkOneByOneTakes) {
  for_many([](const Table &near_table, const LinkQuery &query, LinkRows rows, float best) {
    Table table = near_table;
    const std::int32_t count = table.columns.size;
    DistantRows distant;
    distant.open.reset(count);
    distant.taken.assign(Table::at(count + LinkColumns::kPadding), pentracker::kClosed);
    for (std::int32_t i = 0; i < count; ++i) {
      Blob *blob = &table.blobs[Table::at(i)];
      blob->predicted_x += 200.0F;
      if (i % 7 == 0 || (i > 20 && i < 60)) blob->successor_score = 1.0F;
      if (blob->successor_score < 1.0F) {
        distant.taken[Table::at(i)] = blob->successor_score;
      } else {
        distant.open.close(i);
      }
      table.columns.put(i, i, *blob);
    }
    const std::vector<LinkCandidate> plain = plain_walk(table, query, rows, best);
    expect_same_walk(table, rows, best, plain, [&](std::int32_t limit, LinkWalk *walk) {
      pentracker::walk_distant(table.columns, distant, query.shape, limit, 1.0F, walk);
    });
  });
}

TEST_P(LinkKernelsTest, AWalkEndsAtAScoreThatIsEnough) {
  for_many([](const Table &table, const LinkQuery &query, LinkRows rows, float best) {
    const std::vector<LinkCandidate> plain = plain_walk(table, query, rows, best);
    if (plain.size() < 2) return;
    std::vector<LinkCandidate> taken(Table::at(table.columns.size));
    LinkWalk state{rows.begin, best, taken.data()};
    pentracker::walk_all(table.columns, query, rows.end, plain.front().score, &state);
    ASSERT_GT(state.next, taken.data());
    EXPECT_EQ(taken.front().index, plain.front().index);
    EXPECT_LE(state.row, plain.front().index + 16) << "at most the vector that holds it";
  });
}

TEST_P(LinkKernelsTest, LikelyNearMissesNoneAndItsBoundsHold) {
  for_many([](const Table &table, const LinkQuery &query, LinkRows rows, float best) {
    std::vector<LinkCandidate> found(Table::at(table.columns.size));
    const std::int32_t count =
        pentracker::likely_near(table.columns, query, best, rows, found.data());
    std::map<std::int32_t, float> bounds;
    for (std::int32_t i = 0; i < count; ++i) {
      const LinkCandidate &candidate = found[Table::at(i)];
      EXPECT_GE(candidate.index, rows.begin);
      EXPECT_LT(candidate.index, rows.end);
      bounds[candidate.index] = candidate.score;
    }
    for (std::int32_t row = rows.begin; row < rows.end; ++row) {
      const Blob &blob = table.blobs[Table::at(row)];
      const float position =
          pentracker::position_factor(blob.predicted_x - query.x, blob.predicted_y - query.y);
      if (blob.previous == nullptr || position <= pentracker::kFarPosition) continue;
      const float score = pentracker::match_score(blob, query);
      if (score <= best || score <= blob.successor_score) continue;
      ASSERT_TRUE(bounds.contains(row)) << row;
      EXPECT_GE(bounds[row], score) << row;
    }
  });
}

}  // namespace
}  // namespace nox::test
