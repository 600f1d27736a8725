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

// What is known of one tag. Accounts live as long as the program, since blocks refer to them.
struct ACCOUNT {
  explicit ACCOUNT(const char* own_text) : text(own_text), known_tag(own_text) {}

  const char* const text;              // A copy: the tag's owner may be unloaded before we are.
  std::atomic<const char*> known_tag;  // A tag pointer that is known to have this text.
  ACCOUNT* next = nullptr;

  // Live blocks are not counted by themselves: they follow from what was taken and released.
  std::atomic<std::size_t> live_bytes{0};
  std::atomic<std::size_t> peak_bytes{0};
  std::atomic<std::size_t> allocations{0};
  std::atomic<std::size_t> releases{0};

  // How many allocations remain up to the failing one, and in the lowest bit whether all later
  // ones fail as well. One word, so that it changes as a whole; 0 while nothing is to fail.
  std::atomic<std::uint64_t> failure_plan{0};
  std::atomic<bool> is_registered{false};
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

void count_allocation(ACCOUNT& account, std::size_t size) {
  account.allocations.fetch_add(1, std::memory_order_relaxed);
  const std::size_t live = account.live_bytes.fetch_add(size, std::memory_order_relaxed) + size;
  std::size_t peak = account.peak_bytes.load(std::memory_order_relaxed);
  while (live > peak &&
         !account.peak_bytes.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
  }
}

void count_release(ACCOUNT& account, std::size_t size) {
  account.live_bytes.fetch_sub(size, std::memory_order_relaxed);
  // Pairs with the acquire in get_memory_account: who sees a release sees its allocation, too.
  account.releases.fetch_add(1, std::memory_order_release);
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
  ACCOUNT* account;
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

  void* const block = new (memory) BLOCK_HEADER{account, size} + 1;
  count_allocation(*account, size);
  tell_hook(true, *account, size, block);
  return block;
}

void MEM_MANAGER::delete_wrapper(void* block, const char*) noexcept {
  if (!block) return;

  BLOCK_HEADER* const header = static_cast<BLOCK_HEADER*>(block) - 1;
  const BLOCK_HEADER released = *header;
  count_release(*released.account, released.size);
  // The memory goes back last: otherwise another thread could get this address, and have it told
  // to the hook, before the hook hears that it was released.
  tell_hook(false, *released.account, released.size, block);
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

  // In this order neither the difference can fall below zero nor the peak below the live bytes.
  const std::size_t releases = account->releases.load(std::memory_order_acquire);
  const std::size_t allocations = account->allocations.load(std::memory_order_relaxed);
  const std::size_t live_bytes = account->live_bytes.load(std::memory_order_relaxed);
  const std::size_t peak_bytes = account->peak_bytes.load(std::memory_order_relaxed);
  return {live_bytes, allocations - releases, allocations, std::max(peak_bytes, live_bytes)};
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
