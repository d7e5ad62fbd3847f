// Which lines of the journal are of which run.
#pragma once

#include "evidence/evidence.h"
#include "runs/alignment.h"
#include "runs/lines.h"

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace watch {

/// The lines of the journal by what tells a run from all others: the start stamp of its ping, and
/// the second and the ports of its tests.
class JournalKeys {
 public:
  explicit JournalKeys(const std::vector<JournalLine>& journal);

  // Each returns the place of the line in the journal, or kAlone where none or more than one has
  // the key.
  std::size_t ofPing(LocalTime start) const;
  std::size_t ofForward(const Iperf3Line& line) const;
  std::size_t ofReverse(const Iperf3Line& line) const;
  /// By the date, which is the end of the ping.
  std::size_t ofResult(const ResultLine& line) const;

 private:
  using PlaceByKey = std::map<RunKey, std::size_t>;

  static void add(PlaceByKey& places, const std::optional<RunKey>& key, std::size_t place);
  static std::size_t find(const PlaceByKey& places, const std::optional<RunKey>& key);

  PlaceByKey pings_;
  PlaceByKey forward_;
  PlaceByKey reverse_;
  PlaceByKey results_;
};

/// Gives each line of the journal that none of the histories has led to a run, or makes a run of
/// it.
void placeJournal(const Evidence& evidence, std::vector<RunLines>& runs);

}  // namespace watch
