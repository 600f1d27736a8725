// How the classes of the device layer are built: who derives from whom, and the order of members
// and of virtual operations, which programs that were compiled earlier rely on.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "sbd/sbd_parameter_reader.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"
#include "tests/device/device_support.h"
#include "tests/support/memory_guard.h"

namespace {

using ADDRESSES = std::vector<const void*>;

void expect_ascending(const ADDRESSES& members) {
  for (std::size_t index = 1; index < members.size(); ++index) {
    EXPECT_LT(members[index - 1], members[index]) << "member " << index;
  }
}

// ---- Who derives from whom ---------------------------------------------------------------------

TEST(CLASS_LAYOUT, ClassTree) {
  EXPECT_TRUE((std::is_base_of_v<SBD_FILE_PARSER, SBD_VELDRAN>));
  EXPECT_TRUE((std::is_base_of_v<SBD_PARAMETER_READER, SBD_VELDRAN_PARAMETER_READER>));
  EXPECT_TRUE((std::is_base_of_v<SBD_VELDRAN_PARAMETER_READER, SBD_QMXA_BASE_PARAMETER_READER>));
  EXPECT_TRUE((std::is_base_of_v<SBD_QMXA_BASE_PARAMETER_READER, SBD_QMXA1_PARAMETER_READER>));
  EXPECT_TRUE((std::is_base_of_v<SBD_QMXA_BASE_PARAMETER_READER, SBD_QMXA4_PARAMETER_READER>));
  EXPECT_TRUE((std::is_base_of_v<SBD_QMXA_BASE_PARAMETER_READER, SBD_QMXA10_PARAMETER_READER>));
}

TEST(CLASS_LAYOUT, OnlyTheReadersOfChipsAreComplete) {
  EXPECT_TRUE(std::is_abstract_v<SBD_PARAMETER_READER>);
  EXPECT_TRUE(std::is_abstract_v<SBD_VELDRAN_PARAMETER_READER>);
  EXPECT_TRUE(std::is_abstract_v<SBD_QMXA_BASE_PARAMETER_READER>);
  EXPECT_FALSE(std::is_abstract_v<SBD_QMXA1_PARAMETER_READER>);
  EXPECT_FALSE(std::is_abstract_v<SBD_QMXA4_PARAMETER_READER>);
  EXPECT_FALSE(std::is_abstract_v<SBD_QMXA10_PARAMETER_READER>);
  EXPECT_TRUE(std::has_virtual_destructor_v<SBD_PARAMETER_READER>);
}

TEST(CLASS_LAYOUT, DerivedReadersAddNoMembers) {
  EXPECT_EQ(sizeof(SBD_VELDRAN_PARAMETER_READER), sizeof(SBD_PARAMETER_READER));
  EXPECT_EQ(sizeof(SBD_QMXA_BASE_PARAMETER_READER), sizeof(SBD_PARAMETER_READER));
  EXPECT_EQ(sizeof(SBD_QMXA1_PARAMETER_READER), sizeof(SBD_PARAMETER_READER));
  EXPECT_EQ(sizeof(SBD_QMXA4_PARAMETER_READER), sizeof(SBD_PARAMETER_READER));
  EXPECT_EQ(sizeof(SBD_QMXA10_PARAMETER_READER), sizeof(SBD_PARAMETER_READER));
}

// ---- Members -----------------------------------------------------------------------------------

TEST(CLASS_LAYOUT, MembersOfARecord) {
  const SBD_PARAMETER_READER::SBD_PARAMETER_VALUE record(true, true, true);
  expect_ascending({&record.m_value_type, &record.m_has_value, &record.m_is_defined,
                    &record.m_is_validated, &record.m_bool_value, &record.m_dword_value,
                    &record.m_double_value, &record.m_string_value});
}

class OPEN_READER : public SBD_PARAMETER_READER {
 public:
  explicit OPEN_READER(const SBD_FILE_PARSER& document)
      : SBD_PARAMETER_READER(document, SBD_STRING("stripe")) {}
  bool read_all_parameters() override { return true; }
  bool validate_all_parameters() override { return true; }

  // Without the document behind the module's name: a reference has no address of its own.
  ADDRESSES members() const {
    return {&m_parameters, &m_module_name, &m_post_messages, &m_report_unread};
  }
};

TEST(CLASS_LAYOUT, MembersOfAReader) {
  const SBD_FILE_PARSER document;
  expect_ascending(OPEN_READER(document).members());
}

class OPEN_DEVICE : public SBD_VELDRAN {
 public:
  using SBD_VELDRAN::SBD_VELDRAN;
  ADDRESSES members() const {
    return {&m_device_name, &m_family, &m_chip_type, &m_processor_type, &m_parameter_reader};
  }
};

TEST(CLASS_LAYOUT, MembersOfTheDevice) {
  expect_ascending(OPEN_DEVICE("board").members());
}

template <class ROW>
void expect_row_members() {
  const ROW row = {};
  expect_ascending({&row.block_name, &row.parameter_name, &row.device_mask, &row.has_default,
                    &row.validate_value, &row.requirement, &row.default_value,
                    &row.absent_block_value});
}

TEST(CLASS_LAYOUT, MembersOfRows) {
  expect_row_members<SBD_VELDRAN_PARAMETER_READER::BOOL_ROW>();
  expect_row_members<SBD_VELDRAN_PARAMETER_READER::DWORD_ROW>();
  expect_row_members<SBD_VELDRAN_PARAMETER_READER::DOUBLE_ROW>();
  expect_row_members<SBD_VELDRAN_PARAMETER_READER::STRING_ROW>();
}

// ---- Virtual operations ------------------------------------------------------------------------

#if defined(__GNUC__) && defined(__x86_64__)

// The place of a virtual operation in the table of its class. A destructor takes the first two.
template <class OPERATION>
std::size_t slot_of(OPERATION operation) {
  std::ptrdiff_t words[2];
  static_assert(sizeof operation == sizeof words, "a pointer to a member is two words");
  std::memcpy(words, &operation, sizeof words);
  return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

TEST(CLASS_LAYOUT, SlotsOfReaders) {
  using READER = SBD_VELDRAN_PARAMETER_READER;
  EXPECT_EQ(slot_of(&SBD_PARAMETER_READER::read_all_parameters), 2u);
  EXPECT_EQ(slot_of(&SBD_PARAMETER_READER::validate_all_parameters), 3u);
  EXPECT_EQ(slot_of(&READER::is_family_specific_parameter_required), 4u);
  EXPECT_EQ(slot_of(&READER::is_device_specific_parameter_required), 5u);
  EXPECT_EQ(slot_of(&READER::validate_family_specific_parameter), 6u);
  EXPECT_EQ(slot_of(&READER::validate_device_specific_parameter), 7u);
  EXPECT_EQ(slot_of(&READER::is_for_this_device), 8u);
}

TEST(CLASS_LAYOUT, SlotsOfTheDevice) {
  bool (SBD_FILE_PARSER::*const read)(const char*) = &SBD_FILE_PARSER::read;
  bool (SBD_FILE_PARSER::*const write)(const char*) const = &SBD_FILE_PARSER::write;
  EXPECT_EQ(slot_of(read), 2u);
  EXPECT_EQ(slot_of(write), 3u);
  EXPECT_EQ(slot_of(&SBD_VELDRAN::read), 2u);
}

#endif

}  // namespace
