// The device object: reading, the device block, the stripe module, typed queries.
#include "sbd/sbd_veldran.h"

#include "sbd/device/sbd_device_sources.h"
#include "sbd/device/sbd_veldran_keyword_texts.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_joined_name.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_veldran_keywords.h"
#include "sbd/sbd_veldran_parameter_reader.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

constexpr char k_has_device_name[] = "(!m_device_name.empty())";
constexpr char k_has_reader[] = "m_parameter_reader != NULL";

struct CHIP_NAME {
  const char* keyword;
  SBD_VELDRAN::CHIP_TYPE type;
  SBD_VELDRAN::DEVICE_FAMILY family;
};

constexpr CHIP_NAME k_chip_names[] = {
    {SBD_KEYWORD::QMXA10, SBD_VELDRAN::CT_QMXA10, SBD_VELDRAN::DF_ARM},
    {SBD_KEYWORD::QMXA4, SBD_VELDRAN::CT_QMXA4, SBD_VELDRAN::DF_ARM},
    {SBD_KEYWORD::QMXA1, SBD_VELDRAN::CT_QMXA1, SBD_VELDRAN::DF_ARM},
    {SBD_KEYWORD::QMXM10, SBD_VELDRAN::CT_QMXM10, SBD_VELDRAN::DF_MIPS},
    {SBD_KEYWORD::QMXM4, SBD_VELDRAN::CT_QMXM4, SBD_VELDRAN::DF_MIPS},
    {SBD_KEYWORD::QMXM1, SBD_VELDRAN::CT_QMXM1, SBD_VELDRAN::DF_MIPS},
};

const CHIP_NAME* find_chip(const SBD_STRING& keyword) {
  for (const CHIP_NAME& chip : k_chip_names) {
    if (keyword == chip.keyword) return &chip;
  }
  return nullptr;
}

SBD_PARAMETER_READER* make_reader(const SBD_VELDRAN& device, const SBD_STRING& module_name) {
  switch (device.get_chip_type()) {
    case SBD_VELDRAN::CT_QMXA10:
      return new SBD_QMXA10_PARAMETER_READER(device, module_name);
    case SBD_VELDRAN::CT_QMXA4:
      return new SBD_QMXA4_PARAMETER_READER(device, module_name);
    case SBD_VELDRAN::CT_QMXA1:
      return new SBD_QMXA1_PARAMETER_READER(device, module_name);
    case SBD_VELDRAN::CT_QMXM10:
    case SBD_VELDRAN::CT_QMXM4:
    case SBD_VELDRAN::CT_QMXM1:
    case SBD_VELDRAN::CT_UNKNOWN:
    default:
      return nullptr;
  }
}

bool has_block(const SBD_NODE* node) {
  while (node != nullptr && node->type != SBD_NODE::NT_BLOCK) node = node->next;
  return node != nullptr;
}

// The text that a node states; null for any other node and value.
const char* text_of(const SBD_NODE* node) {
  if (node == nullptr || node->type != SBD_NODE::NT_STATEMENT) return nullptr;
  const SBD_STATEMENT* const statement = node->statement;
  if (statement == nullptr || statement->type != SBD_STATEMENT::ST_ASSIGNMENT) return nullptr;
  const SBD_PARA_VALUE* const value = statement->value;
  return value != nullptr && value->type == SBD_PARA_VALUE::VT_STRING ? value->text : nullptr;
}

void clear_value(SBD_STRING& value) {
  value.clear();
}

template <class VALUE>
void clear_value(VALUE& value) {
  value = VALUE{};
}

}  // namespace

SBD_VELDRAN::SBD_VELDRAN(const char* device_name) noexcept {
  if (device_name == nullptr) return;
  sbd_guarded(k_source_veldran, false, [this, device_name] {
    m_device_name = device_name;
    return true;
  });
}

SBD_VELDRAN::~SBD_VELDRAN() {
  drop_reader();
}

void SBD_VELDRAN::drop_reader() noexcept {
  delete m_parameter_reader;
  m_parameter_reader = nullptr;
}

// ---- Reading ---------------------------------------------------------------------------------

bool SBD_VELDRAN::read(const char* path) {
  drop_reader();
  return SBD_FILE_PARSER::read(path) && read_device();
}

bool SBD_VELDRAN::read_text(const char* text, std::size_t length, const char* name) {
  drop_reader();
  return SBD_FILE_PARSER::read_text(text, length, name) && read_device();
}

bool SBD_VELDRAN::select_device(const char* device_name) noexcept {
  drop_reader();
  // A device that does not state them must not have those of the one before.
  set_family(DF_UNKNOWN);
  m_chip_type = CT_UNKNOWN;
  const bool has_name = sbd_guarded(k_source_veldran, false, [this, device_name] {
    m_device_name = device_name != nullptr ? device_name : "";
    return true;
  });
  return has_name && read_device();
}

bool SBD_VELDRAN::read_device() {
  return sbd_guarded(k_source_veldran, false, [this] {
    if (m_device_name.empty() || !has_block(m_parser_para.root)) {
      set_family(DF_UNKNOWN);
      m_chip_type = CT_UNKNOWN;
      return true;
    }
    if (!check_device()) return false;
    const SBD_NODE* const stripe = find_stripe();
    // Without a stripe, or with several, the file is good as far as it goes.
    if (stripe == nullptr) return true;
    SBD_STRING module_name;
    if (!SBD_LOOKUP::make_full_name(stripe, module_name)) return false;
    m_parameter_reader = make_reader(*this, module_name);
    return m_parameter_reader != nullptr && m_parameter_reader->read_and_validate_parameters();
  });
}

// ---- The device block --------------------------------------------------------------------------

bool SBD_VELDRAN::check_device() {
  SBD_CHECK(!m_device_name.empty(), k_has_device_name, k_source_veldran);
  return sbd_guarded(k_source_veldran, false, [this] {
    const SBD_NODE* const node = SBD_LOOKUP::find(*this, m_device_name.c_str(), nullptr);
    const bool is_device = node != nullptr && node->type == SBD_NODE::NT_BLOCK &&
                           node->block != nullptr &&
                           node->block->block_type == SBD_BLOCK::BT_DEVICE;
    if (!is_device) {
      const SBD_STRING reason = "No device block '" + m_device_name + "' is defined.";
      return refuse_device(node, reason.c_str());
    }
    const bool is_good = check_family(node);
    return check_type(node) && is_good;
  });
}

void SBD_VELDRAN::set_family(DEVICE_FAMILY family) {
  m_family = family;
  m_processor_type = static_cast<PROCESSOR_TYPE>(family);
}

bool SBD_VELDRAN::check_family(const SBD_NODE* device_node) {
  SBD_STRING family;
  if (!get_text(m_device_name, SBD_VEL_FAMILY, family)) {
    set_fault_place(member_or_block(device_node, SBD_VEL_FAMILY));
    post_message(sbd_make_message<MSG_E>(k_msg_family_not_defined_error, m_device_name.c_str()));
    return false;
  }
  if (family == SBD_VEL_VELDRAN_ARM) {
    set_family(DF_ARM);
  } else if (family == SBD_VEL_VELDRAN_MIPS) {
    set_family(DF_MIPS);
  } else {
    set_family(DF_UNKNOWN);
    set_fault_place(member_or_block(device_node, SBD_VEL_FAMILY));
    post_message(sbd_make_message<MSG_E>(k_msg_unsupported_family_error, family.c_str()));
    return false;
  }
  return true;
}

bool SBD_VELDRAN::check_type(const SBD_NODE* device_node) {
  const SBD_NODE* const place = member_or_block(device_node, SBD_VEL_TYPE);
  SBD_STRING type;
  if (!get_text(m_device_name, SBD_VEL_TYPE, type)) {
    return refuse_device(place, "Device type is not defined in the device block");
  }
  const CHIP_NAME* const chip = find_chip(type);
  m_chip_type = chip != nullptr ? chip->type : CT_UNKNOWN;
  if (chip == nullptr) return refuse_device(place, "Unsupported device (chip) type");
  if (m_family != DF_UNKNOWN && m_family != chip->family) {
    return refuse_device(place, "Device type does not match processor type.");
  }
  return true;
}

// A text value in lower case; false for a member that is none.
bool SBD_VELDRAN::get_text(const SBD_STRING& block, const char* parameter, SBD_STRING& text) const {
  const char* const stated = text_of(SBD_LOOKUP::find_member(*this, block.c_str(), parameter));
  if (stated == nullptr) return false;
  text = stated;
  sbd_lower(text);
  return true;
}

const SBD_NODE* SBD_VELDRAN::member_or_block(const SBD_NODE* block, const char* parameter) const {
  const SBD_NODE* const member = SBD_LOOKUP::find(*this, parameter, block);
  return member != nullptr ? member : block;
}

bool SBD_VELDRAN::refuse_device(const SBD_NODE* place, const char* reason) const {
  set_fault_place(place);
  post_message(sbd_make_message<MSG_E>(k_msg_vel_device_error, reason));
  return false;
}

// The one stripe module; null when there is none, and, after posting that, when there are several.
const SBD_NODE* SBD_VELDRAN::find_stripe() const {
  const SBD_NODE* const device_node = SBD_LOOKUP::find(*this, m_device_name.c_str(), nullptr);
  if (device_node == nullptr) return nullptr;
  const SBD_NODE* stripe = nullptr;
  SBD_TREE_WALK walk(sbd_members_of(device_node));
  while (const SBD_NODE* const node = walk.next()) {
    if (!is_stripe(node)) continue;
    if (stripe != nullptr) {
      set_fault_place(node);
      post_message(sbd_make_message<MSG_E>(k_msg_vel_module_error,
                                           "Multiple specification of the Veldran module block"));
      return nullptr;
    }
    stripe = node;
  }
  return stripe;
}

bool SBD_VELDRAN::is_stripe(const SBD_NODE* node) const {
  if (node->type != SBD_NODE::NT_BLOCK || node->block == nullptr) return false;
  if (node->block->block_type != SBD_BLOCK::BT_MODULE) return false;
  const char* const type = text_of(SBD_LOOKUP::find(*this, SBD_VEL_TYPE, node));
  return type != nullptr && sbd_equal_ignoring_case(type, SBD_VEL_VELDRAN_STRIPE);
}

bool SBD_VELDRAN::get_module_ref_name(SBD_STRING& module_name) const {
  SBD_CHECK(!m_device_name.empty(), k_has_device_name, k_source_veldran);
  return sbd_guarded(k_source_veldran, false, [this, &module_name] {
    const SBD_NODE* const stripe = find_stripe();
    return stripe != nullptr && SBD_LOOKUP::make_full_name(stripe, module_name);
  });
}

bool SBD_VELDRAN::get_chip_type_name(SBD_STRING& chip_type) const {
  if (m_device_name.empty()) return false;
  return sbd_guarded(k_source_veldran, false, [this, &chip_type] {
    SBD_STRING type;
    if (!get_text(m_device_name, SBD_VEL_TYPE, type)) return false;
    chip_type.swap(type);
    return true;
  });
}

// ---- Typed queries -----------------------------------------------------------------------------

template <class VALUE>
bool SBD_VELDRAN::get_value_of(const char* name, VALUE& value) const noexcept {
  if (SBD_CHECK(m_parameter_reader != nullptr, k_has_reader, k_source_veldran)) {
    return m_parameter_reader->get_parameter(name, value);
  }
  clear_value(value);
  return false;
}

template <class VALUE>
bool SBD_VELDRAN::get_value_of(const char* block, const char* name, VALUE& value) const noexcept {
  if (SBD_CHECK(m_parameter_reader != nullptr, k_has_reader, k_source_veldran)) {
    return m_parameter_reader->get_parameter(block, name, value);
  }
  clear_value(value);
  return false;
}

bool SBD_VELDRAN::get_parameter(const char* name, bool& value) const noexcept {
  return get_value_of(name, value);
}

bool SBD_VELDRAN::get_parameter(const char* block, const char* name, bool& value) const noexcept {
  return get_value_of(block, name, value);
}

bool SBD_VELDRAN::get_parameter(const char* name, unsigned long& value) const noexcept {
  return get_value_of(name, value);
}

bool SBD_VELDRAN::get_parameter(const char* block, const char* name,
                                unsigned long& value) const noexcept {
  return get_value_of(block, name, value);
}

bool SBD_VELDRAN::get_parameter(const char* name, double& value) const noexcept {
  return get_value_of(name, value);
}

bool SBD_VELDRAN::get_parameter(const char* block, const char* name, double& value) const noexcept {
  return get_value_of(block, name, value);
}

bool SBD_VELDRAN::get_parameter(const char* name, SBD_STRING& value) const noexcept {
  return get_value_of(name, value);
}

bool SBD_VELDRAN::get_parameter(const char* block, const char* name,
                                SBD_STRING& value) const noexcept {
  return get_value_of(block, name, value);
}

const SBD_VECTOR<SBD_PARAMETER_FAULT>& SBD_VELDRAN::get_parameter_faults() const noexcept {
  static const SBD_VECTOR<SBD_PARAMETER_FAULT> no_faults;
  return m_parameter_reader != nullptr ? m_parameter_reader->get_faults() : no_faults;
}
