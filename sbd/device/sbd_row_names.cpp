#include "sbd/device/sbd_row_names.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_hash.h"

const SBD_ROW_NAMES& SBD_ROW_NAMES::get() {
  static const SBD_ROW_NAMES names;
  return names;
}

SBD_ROW_NAMES::SBD_ROW_NAMES() {
  add_rows(READER::sbd_veldran_bool_parameters);
  add_rows(READER::sbd_veldran_dword_parameters);
  add_rows(READER::sbd_veldran_double_parameters);
  add_rows(READER::sbd_veldran_string_parameters);
  set_ranks();
  set_slots();
}

template <class ROW>
void SBD_ROW_NAMES::add_rows(const ROW* row) {
  const auto add_text = [this](std::string_view text) {
    std::copy(text.begin(), text.end(), m_texts.begin() + m_text_size);
    m_text_size += text.size();
    return text.size();
  };
  for (; row->parameter_name != nullptr; ++row) {
    const std::size_t begin = m_text_size;
    if (row->block_name != nullptr) {
      add_text(row->block_name);
      add_text(".");
    }
    const std::size_t parameter_size = add_text(row->parameter_name);
    const std::string_view reference(m_texts.data() + begin, m_text_size - begin);
    const std::string_view own_name = reference.substr(reference.size() - parameter_size);
    m_names[m_name_count++] = {reference, own_name, sbd_hash_name(own_name),
                               SBD_PARAMETER_STORE::hash_of(reference)};
  }
}

void SBD_ROW_NAMES::set_ranks() {
  std::array<SBD_PREPARED_NAME*, k_count> order{};
  std::transform(m_names.begin(), m_names.end(), order.begin(),
                 [](SBD_PREPARED_NAME& name) { return &name; });
  std::sort(order.begin(), order.end(),
            [](const SBD_PREPARED_NAME* left, const SBD_PREPARED_NAME* right) {
              return left->reference < right->reference;
            });
  for (std::uint32_t rank = 0; rank != k_count; ++rank) order[rank]->rank = rank;

  for (SBD_PREPARED_NAME& name : m_names) {
    name.next_rank = k_count;
    for (const SBD_PREPARED_NAME* read = m_names.data(); read != &name; ++read) {
      if (read->rank > name.rank) name.next_rank = std::min(name.next_rank, read->rank);
    }
  }
}

// Rows of one reference are met in their order when they are looked for.
void SBD_ROW_NAMES::set_slots() {
  for (std::size_t row = 0; row != k_count; ++row) {
    std::size_t slot = m_names[row].hash % k_slots;
    while (m_slots[slot] != 0) slot = (slot + 1) % k_slots;
    m_slots[slot] = static_cast<std::uint8_t>(row + 1);
  }
}
