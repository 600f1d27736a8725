// What a device has at which address.
#ifndef TOOLS_MEMORY_MAP_H
#define TOOLS_MEMORY_MAP_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tools/device_view.h"

namespace sbd_tool {

// Addresses have 32 bits.
inline constexpr std::uint64_t k_address_space = std::uint64_t{1} << 32U;

// A block with a base address and a size.
struct MEMORY_WINDOW {
  // A stated number that addresses have not enough bits for.
  struct MISFIT {
    std::optional<SOURCE_RANGE> place;  // Of its statement.
    std::string text;                   // "sram[0].address_size counts as 0, not 4294967296".
  };

  std::string name;  // The block below the stripe's module, such as "ebi.region[0]".
  PARAMETER_VIEW base;
  PARAMETER_VIEW size;
  PARAMETER_VIEW enabled;
  PARAMETER_VIEW prefetch;

  bool is_in_use = false;   // Enabled, and so is the controller that it belongs to.
  bool is_placed = false;   // In use, with a base and a size that is not 0.
  std::uint64_t first = 0;  // Address; of a window that is placed.
  std::uint64_t end = 0;    // The address behind the last one; may lie beyond the address space.
  std::vector<std::string> overlaps;  // Names of other windows.
  // What else is to be said, such as why it is not in use; with the texts of the misfits.
  std::vector<std::string> remarks;
  std::vector<MISFIT> misfits;

  bool is_faulty() const { return !overlaps.empty() || end > k_address_space; }
};

// Addresses that no window answers to.
struct MEMORY_HOLE {
  std::uint64_t first;
  std::uint64_t end;
};

struct MEMORY_MAP {
  std::vector<MEMORY_WINDOW> placed;  // By address.
  std::vector<MEMORY_WINDOW> others;  // In the order of the chip's parameters.
  std::vector<MEMORY_HOLE> holes;     // By address.
};

// Of the device that is open, which has parameters.
MEMORY_MAP make_memory_map(const SBD_VELDRAN& device);

// "0x7FFFC000".
std::string format_address(std::uint64_t address);

// As a descriptor writes it: "64K", "1536".
std::string format_size(std::uint64_t bytes);

}  // namespace sbd_tool

#endif
