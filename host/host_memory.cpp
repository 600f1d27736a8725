// The standalone memory manager: an account per module tag over malloc and large blocks.
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "h/mem_alloc_sys.h"
#include "host/handler_slot.h"
#include "host/large_blocks.h"
#include "host/sbd_host.h"

namespace {

// ---- Accounts ----------------------------------------------------------------------------------

struct ACCOUNT;

// What blocks are counted with that threads of one place take. Live blocks are not counted by
// themselves: they follow from what was taken and released.
struct COUNTS {
  ACCOUNT* account = nullptr;
  std::atomic<std::size_t> live_bytes{0};
  std::atomic<std::size_t> peak_bytes{0};
  std::atomic<std::size_t> allocations{0};
  std::atomic<std::size_t> releases{0};

  // Counts that different threads change must not share a line of the cache, wherever they begin.
  static constexpr std::size_t k_line = 64;
  char distance[k_line] = {};
};

// Threads get the places in turn, so that those that run at a time seldom share one.
constexpr unsigned k_places = 16;

// What is known of one tag. Accounts live as long as the program, since blocks refer to them.
struct ACCOUNT {
  explicit ACCOUNT(const char* own_text) : text(own_text), known_tag(own_text) {
    for (COUNTS& place : counts) place.account = this;
  }

  const char* const text;              // A copy: the tag's owner may be unloaded before we are.
  std::atomic<const char*> known_tag;  // A tag pointer that is known to have this text.
  ACCOUNT* next = nullptr;

  // How many allocations remain up to the failing one, and in the lowest bit whether all later
  // ones fail as well. One word, so that it changes as a whole; 0 while nothing is to fail.
  std::atomic<std::uint64_t> failure_plan{0};
  std::atomic<bool> is_registered{false};

  char distance[COUNTS::k_line] =
      {};  // What all threads read must not lie beside what one changes.
  COUNTS counts[k_places];
};

// Constant-initialized and never destroyed: modules register and release in their own static
// initializers and destructors, in an order nobody controls.
std::atomic<ACCOUNT*> g_accounts{nullptr};
std::mutex g_accounts_mutex;  // Held while an account is added.

// For any caller's string; null counts as "".
ACCOUNT* find_account(const char* tag) {
  const char* const text = tag ? tag : "";
  ACCOUNT* account = g_accounts.load(std::memory_order_acquire);
  while (account && std::strcmp(account->text, text) != 0) account = account->next;
  return account;
}

// Straight from malloc, so that accounts do not show up in accounts.
ACCOUNT* add_account(const char* text) {
  const std::size_t text_size = std::strlen(text) + 1;
  void* const memory = std::malloc(sizeof(ACCOUNT) + text_size);
  if (!memory) return nullptr;

  char* const own_text = static_cast<char*>(memory) + sizeof(ACCOUNT);
  std::memcpy(own_text, text, text_size);
  ACCOUNT* const account = new (memory) ACCOUNT(own_text);
  account->next = g_accounts.load(std::memory_order_relaxed);
  g_accounts.store(account, std::memory_order_release);
  return account;
}

// Null when there is no memory for a new account.
ACCOUNT* find_or_add_account(const char* tag) {
  if (ACCOUNT* const account = find_account(tag)) return account;

  const std::lock_guard<std::mutex> lock(g_accounts_mutex);
  // Another thread may have added it in the meantime.
  if (ACCOUNT* const account = find_account(tag)) return account;
  return add_account(tag ? tag : "");
}

// For a tag with static lifetime: its address stands for its text from the first call on.
ACCOUNT* account_of_module(const char* module_tag) {
  for (ACCOUNT* account = g_accounts.load(std::memory_order_acquire); account;
       account = account->next) {
    if (account->known_tag.load(std::memory_order_relaxed) == module_tag) return account;
  }
  ACCOUNT* const account = find_or_add_account(module_tag);
  if (!account || !module_tag) return account;

  // Only the first address is kept, lest two copies of a tag keep replacing each other.
  const char* expected = account->text;
  account->known_tag.compare_exchange_strong(expected, module_tag, std::memory_order_relaxed);
  return account;
}

// ---- Places of threads -------------------------------------------------------------------------

constexpr unsigned k_no_place = k_places;
thread_local unsigned t_place = k_no_place;
std::atomic<unsigned> g_threads{0};  // That have a place.

COUNTS& counts_of_thread(ACCOUNT& account) {
  if (t_place == k_no_place) t_place = g_threads.fetch_add(1, std::memory_order_relaxed) % k_places;
  return account.counts[t_place];
}

void count_allocation(COUNTS& counts, std::size_t size) {
  counts.allocations.fetch_add(1, std::memory_order_relaxed);
  const std::size_t live = counts.live_bytes.fetch_add(size, std::memory_order_relaxed) + size;
  std::size_t peak = counts.peak_bytes.load(std::memory_order_relaxed);
  while (live > peak &&
         !counts.peak_bytes.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
  }
}

void count_release(COUNTS& counts, std::size_t size) {
  counts.live_bytes.fetch_sub(size, std::memory_order_relaxed);
  // Pairs with the acquire in get_memory_account: who sees a release sees its allocation, too.
  counts.releases.fetch_add(1, std::memory_order_release);
}

// ---- Planned failures --------------------------------------------------------------------------

constexpr std::uint64_t k_and_later = 1;

std::uint64_t make_failure_plan(std::size_t count, bool and_later) {
  if (count == 0) return 0;
  const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() >> 1;
  return std::min<std::uint64_t>(count, most) << 1 | (and_later ? k_and_later : 0);
}

// Takes one step of the plan; true if this allocation is one that fails.
bool is_planned_to_fail(ACCOUNT& account) {
  std::uint64_t plan = account.failure_plan.load(std::memory_order_relaxed);
  while (plan != 0) {
    const bool fails = plan >> 1 == 1;
    if (fails && (plan & k_and_later)) return true;
    const std::uint64_t next_plan = fails ? 0 : plan - 2;
    if (account.failure_plan.compare_exchange_weak(plan, next_plan, std::memory_order_relaxed)) {
      return fails;
    }
  }
  return false;
}

// ---- Hook --------------------------------------------------------------------------------------

std::atomic<bool> g_has_hook{false};  // Spares everybody the mutex while there is none.
thread_local bool t_is_in_hook = false;

// Never destroyed, for the same reason as the accounts.
HANDLER_SLOT<sbd_host::MEMORY_HOOK>& hook_slot() {
  static auto* const slot = new HANDLER_SLOT<sbd_host::MEMORY_HOOK>;
  return *slot;
}

void call_hook(const sbd_host::MEMORY_EVENT& event) {
  if (t_is_in_hook) return;

  t_is_in_hook = true;
  {
    // The copy ends before the flag does, as what a hook's destructor releases is its own as well.
    const auto hook = hook_slot().get();
    if (hook) (*hook)(event);
  }
  t_is_in_hook = false;
}

void tell_hook(bool is_allocation, const ACCOUNT& account, std::size_t size, const void* block) {
  if (!g_has_hook.load(std::memory_order_acquire)) return;
  call_hook({is_allocation, account.text, size, block});
}

// ---- Blocks ------------------------------------------------------------------------------------

// Stands in front of every block. Its own alignment and size keep the block behind it aligned.
struct alignas(std::max_align_t) BLOCK_HEADER {
  COUNTS* counts;  // Where it was counted, and is to be counted when it is released.
  std::size_t size;
};

// No object can be larger than this; the system need not be asked.
constexpr std::size_t k_largest_block =
    static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / 2;

void* get_memory(std::size_t size) {
  return size < k_least_large_block ? std::malloc(size) : take_large_block(size);
}

void free_memory(void* memory, std::size_t size) noexcept {
  if (size < k_least_large_block) {
    std::free(memory);
  } else {
    give_back_large_block(memory);
  }
}

}  // namespace

void* MEM_MANAGER::new_wrapper(std::size_t size, const char* module_tag) {
  ACCOUNT* const account = account_of_module(module_tag);
  if (!account || size > k_largest_block || is_planned_to_fail(*account)) throw std::bad_alloc();

  void* const memory = get_memory(sizeof(BLOCK_HEADER) + size);
  if (!memory) throw std::bad_alloc();

  COUNTS& counts = counts_of_thread(*account);
  void* const block = new (memory) BLOCK_HEADER{&counts, size} + 1;
  count_allocation(counts, size);
  tell_hook(true, *account, size, block);
  return block;
}

void MEM_MANAGER::delete_wrapper(void* block, const char*) noexcept {
  if (!block) return;

  BLOCK_HEADER* const header = static_cast<BLOCK_HEADER*>(block) - 1;
  const BLOCK_HEADER released = *header;
  count_release(*released.counts, released.size);
  // The memory goes back last: otherwise another thread could get this address, and have it told
  // to the hook, before the hook hears that it was released.
  tell_hook(false, *released.counts->account, released.size, block);
  free_memory(header, sizeof(BLOCK_HEADER) + released.size);
}

MEM_INITIALIZER::MEM_INITIALIZER(const char* module_tag) noexcept {
  // Without memory for the account the tag stays unregistered; allocating under it will tell.
  ACCOUNT* const account = account_of_module(module_tag);
  if (account) account->is_registered.store(true, std::memory_order_relaxed);
}

namespace sbd_host {

MEMORY_ACCOUNT get_memory_account(const char* module_tag) {
  const ACCOUNT* const account = find_account(module_tag);
  if (!account) return {0, 0, 0, 0};

  MEMORY_ACCOUNT sum = {0, 0, 0, 0};
  for (const COUNTS& counts : account->counts) {
    // In this order neither the difference can fall below zero nor the peak below the live bytes.
    const std::size_t releases = counts.releases.load(std::memory_order_acquire);
    const std::size_t allocations = counts.allocations.load(std::memory_order_relaxed);
    const std::size_t live_bytes = counts.live_bytes.load(std::memory_order_relaxed);
    sum.live_bytes += live_bytes;
    sum.live_blocks += allocations - releases;
    sum.total_allocations += allocations;
    sum.peak_bytes += std::max(counts.peak_bytes.load(std::memory_order_relaxed), live_bytes);
  }
  return sum;
}

bool is_module_registered(const char* module_tag) {
  const ACCOUNT* const account = find_account(module_tag);
  return account && account->is_registered.load(std::memory_order_relaxed);
}

void set_memory_hook(MEMORY_HOOK hook) {
  static std::mutex* const changes = new std::mutex;  // Flag and hook change together.
  const std::lock_guard<std::mutex> lock(*changes);
  const bool has_hook = static_cast<bool>(hook);
  hook_slot().set(std::move(hook));
  g_has_hook.store(has_hook, std::memory_order_release);
}

void fail_allocation(const char* module_tag, std::size_t count, bool and_later) {
  ACCOUNT* const account = find_or_add_account(module_tag);
  if (!account) throw std::bad_alloc();
  account->failure_plan.store(make_failure_plan(count, and_later), std::memory_order_relaxed);
}

void limit_kept_memory(std::size_t limit) {
  limit_kept_blocks(limit);
}

std::size_t get_kept_memory() {
  return size_of_kept_blocks();
}

}  // namespace sbd_host
