#include "web/draw_tiles.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace {

struct Drawn {
  TileBlock block{};
  std::vector<std::string> pngs{};
  std::string problem{};
};

// Threads that draw, each from layers of its own, a little ahead of the one that writes.
class Crew {
 public:
  Crew(const TileJob& job, std::vector<TileBlock> blocks)
      : m_job(job), m_blocks(std::move(blocks)), m_most(2 * static_cast<size_t>(job.threads)) {
    for (size_t i = 0; i < static_cast<size_t>(job.threads) && i < m_blocks.size(); ++i)
      m_threads.emplace_back([this] { Work(); });
  }
  ~Crew() {
    {
      const std::lock_guard lock(m_mutex);
      m_next = m_blocks.size();
      m_drawn.clear();
    }
    m_room.notify_all();
  }
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  /// Waits for a block; each is handed out once.
  Drawn Take() {
    std::unique_lock lock(m_mutex);
    m_ready.wait(lock, [this] { return !m_drawn.empty(); });
    Drawn drawn = std::move(m_drawn.front());
    m_drawn.pop_front();
    m_room.notify_one();
    return drawn;
  }

 private:
  bool TakeBlock(TileBlock& block) {
    std::unique_lock lock(m_mutex);
    m_room.wait(lock, [this] { return m_drawn.size() < m_most || m_next >= m_blocks.size(); });
    if (m_next >= m_blocks.size()) return false;
    block = m_blocks[m_next++];
    return true;
  }

  void Work() {
    MapPainter maps(m_job.data);
    TilePainter tiles(maps);
    for (Drawn drawn; TakeBlock(drawn.block); drawn = {}) {
      try {
        drawn.problem = tiles.Paint(drawn.block, m_job.look, drawn.pngs);
      } catch (const std::bad_alloc&) {
        drawn.problem = "out of memory";
      }
      const std::lock_guard lock(m_mutex);
      m_drawn.push_back(std::move(drawn));
      m_ready.notify_one();
    }
  }

  const TileJob& m_job;
  const std::vector<TileBlock> m_blocks;
  const size_t m_most;  // blocks that wait to be written
  std::mutex m_mutex;
  std::condition_variable m_ready, m_room;
  size_t m_next = 0;
  std::deque<Drawn> m_drawn;
  std::vector<std::jthread> m_threads;  // last: joined before what they work with goes
};

std::string Write(const TileJob& job, const Drawn& drawn, TileWriter& file, int64_t& there) {
  if (!drawn.problem.empty()) return drawn.problem;
  for (const TileId& tile : job.work.TilesOf(drawn.block)) {
    const int at = (tile.y - drawn.block.y) * drawn.block.columns + tile.x - drawn.block.x;
    if (std::string problem = file.Add(tile, drawn.pngs[static_cast<size_t>(at)]); !problem.empty())
      return problem;
    ++there;
  }
  return file.Keep();
}

}  // namespace

std::string DrawTiles(const TileJob& job, TileWriter& file) {
  std::vector<TileBlock> blocks;
  int64_t there = 0, all = 0;
  job.work.VisitBlocks(job.shard, [&](const TileBlock& block) {
    const std::vector<TileId> tiles = job.work.TilesOf(block);
    const auto count = static_cast<int64_t>(tiles.size());
    all += count;
    if (file.Has(tiles.front()))
      there += count;
    else
      blocks.push_back(block);
  });
  const int64_t before = there;
  const size_t toDraw = blocks.size();
  Crew crew(job, std::move(blocks));
  for (size_t i = 0; i < toDraw; ++i) {
    if (job.progress) job.progress(there, all, before);
    if (std::string problem = Write(job, crew.Take(), file, there); !problem.empty()) return problem;
  }
  if (job.progress) job.progress(there, all, before);
  return {};
}
