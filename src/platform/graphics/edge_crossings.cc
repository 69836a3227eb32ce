// Crossing pairs are counted band by band: the rows are cut into horizontal
// bands, and two edges that both span a band cross inside it exactly when
// their order along the band's top differs from their order along its
// bottom. Sorting the band's edges by their top x and counting the
// inversions of their bottom x (a merge sort) counts those pairs in
// O(n log n) instead of testing every pair.
#include "platform/graphics/edge_crossings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace paintdoc::drawing {

namespace {

// Edges entered in the bands, in all: bounds the time and memory of the
// count. Bands grow taller until the edges fit (each edge enters every band
// it spans).
constexpr double kBandEntryBudget = 1'000'000;
// More bands than this would only make the band table large; a band a pixel
// row high is as fine as counting needs.
constexpr double kMostBands = 1 << 16;
// Where the first band starts, in band heights above the visible rows. Edges
// that cross exactly on a band's border would tie at it instead of swapping
// order, so the borders avoid whole and half pixel rows, where paths with
// round coordinates cross.
constexpr double kBandPhase = 0.381966;

struct Span {
  double top, bottom;  // within the visible rows
};

Span RowsOf(const DeviceEdge& e, const Rect& visible) {
  return {std::max(std::min(e.y0, e.y1), visible.minY()),
          std::min(std::max(e.y0, e.y1), visible.maxY())};
}

// x of the edge at row y, with y held to the edge's own rows and x to just
// beyond the visible columns (where cairo clips edges onto the border).
double XAt(const DeviceEdge& e, double y, const Rect& visible) {
  double t = e.y1 == e.y0 ? 0 : std::clamp((y - e.y0) / (e.y1 - e.y0), 0.0, 1.0);
  double x = e.x0 + t * (e.x1 - e.x0);
  return std::clamp(x, visible.minX() - 1, visible.maxX() + 1);
}

// Sorts values[from, to) and answers how many pairs were out of order.
double CountInversions(std::vector<double>& values, std::vector<double>& scratch, size_t from,
                       size_t to) {
  if (to - from < 2) return 0;
  size_t middle = from + (to - from) / 2;
  double inversions = CountInversions(values, scratch, from, middle) +
                      CountInversions(values, scratch, middle, to);
  size_t left = from, right = middle, out = from;
  while (left < middle && right < to) {
    if (values[right] < values[left]) {
      inversions += static_cast<double>(middle - left);
      scratch[out++] = values[right++];
    } else {
      scratch[out++] = values[left++];
    }
  }
  while (left < middle) scratch[out++] = values[left++];
  while (right < to) scratch[out++] = values[right++];
  std::copy(scratch.begin() + static_cast<std::ptrdiff_t>(from),
            scratch.begin() + static_cast<std::ptrdiff_t>(to),
            values.begin() + static_cast<std::ptrdiff_t>(from));
  return inversions;
}

// The edges entered in each band, as one list with each band's start in `starts`.
struct BandTable {
  double top = 0, height = 1;
  std::vector<size_t> starts;  // bands + 1 entries
  std::vector<size_t> edges;
};

BandTable MakeBands(const std::vector<DeviceEdge>& edges, const Rect& visible, double rows) {
  BandTable table;
  double visibleRows = std::max(1.0, visible.height());
  table.height = std::max({1.0, rows / kBandEntryBudget, visibleRows / kMostBands});
  table.top = visible.minY() - kBandPhase * table.height;
  size_t bands = static_cast<size_t>(std::ceil(visibleRows / table.height)) + 1;
  auto bandRange = [&](const Span& span) {
    size_t first = static_cast<size_t>((span.top - table.top) / table.height);
    size_t last = static_cast<size_t>((span.bottom - table.top) / table.height);
    return std::pair{std::min(first, bands - 1), std::min(last, bands - 1)};
  };
  table.starts.assign(bands + 1, 0);
  for (const DeviceEdge& e : edges) {
    Span span = RowsOf(e, visible);
    if (!(span.bottom > span.top)) continue;
    auto [first, last] = bandRange(span);
    for (size_t band = first; band <= last; ++band) ++table.starts[band + 1];
  }
  for (size_t band = 0; band < bands; ++band) table.starts[band + 1] += table.starts[band];
  table.edges.resize(table.starts[bands]);
  std::vector<size_t> next(table.starts.begin(), table.starts.end() - 1);
  for (size_t index = 0; index < edges.size(); ++index) {
    Span span = RowsOf(edges[index], visible);
    if (!(span.bottom > span.top)) continue;
    auto [first, last] = bandRange(span);
    for (size_t band = first; band <= last; ++band) table.edges[next[band]++] = index;
  }
  return table;
}

}  // namespace

EdgeCrossings CountCrossings(const std::vector<DeviceEdge>& edges, const Rect& visible,
                             double enough) {
  EdgeCrossings counted;
  if (RectIsEmpty(visible)) return counted;
  for (const DeviceEdge& e : edges) {
    Span span = RowsOf(e, visible);
    if (span.bottom > span.top) counted.rows += span.bottom - span.top;
  }
  if (counted.rows == 0 || enough <= 0) return counted;

  BandTable table = MakeBands(edges, visible, counted.rows);
  std::vector<std::pair<double, double>> ends;  // x along the band's top and bottom
  std::vector<double> bottoms, scratch;
  for (size_t band = 0; band + 1 < table.starts.size(); ++band) {
    double top = table.top + band * table.height, bottom = top + table.height;
    ends.clear();
    for (size_t entry = table.starts[band]; entry < table.starts[band + 1]; ++entry) {
      const DeviceEdge& e = edges[table.edges[entry]];
      ends.emplace_back(XAt(e, top, visible), XAt(e, bottom, visible));
    }
    std::sort(ends.begin(), ends.end());
    bottoms.resize(ends.size());
    scratch.resize(ends.size());
    for (size_t i = 0; i < ends.size(); ++i) bottoms[i] = ends[i].second;
    counted.intersections += CountInversions(bottoms, scratch, 0, bottoms.size());
    if (counted.intersections > enough) {
      counted.stoppedEarly = band + 2 < table.starts.size();
      break;
    }
  }
  return counted;
}

}  // namespace paintdoc::drawing
