// The device object: which block it takes, what it says about it, and how it reads.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"
#include "tests/device/descriptor_text.h"
#include "tests/device/device_support.h"
#include "tests/device/expected_model.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"

namespace {

constexpr char NO_READER[] = "m_parameter_reader != NULL";
constexpr char NO_DEVICE_NAME[] = "(!m_device_name.empty())";

std::string device_error(const std::string& reason) {
  return "6 Device block in System Build Descriptor File cannot be used because " + reason;
}

const std::string SEVERAL_MODULES =
    "7 Module blocks that define Veldran embedded processor stripe in System Build Descriptor File"
    " cannot be used because Multiple specification of the Veldran module block";

std::string family_error(const std::string& family) {
  return "14 System Build Descriptor File contains invalid device family " + family +
         " for family parameter";
}

std::string no_family_error(const std::string& device) {
  return "15 Device block \"" + device +
         "\" in System Build Descriptor File must contain family parameter";
}

const std::string NO_TYPE = device_error("Device type is not defined in the device block");
const std::string UNKNOWN_TYPE = device_error("Unsupported device (chip) type");
const std::string MISMATCH = device_error("Device type does not match processor type.");

std::string no_device_error(const std::string& device) {
  return device_error("No device block '" + device + "' is defined.");
}

// What the stripe of a good descriptor holds.
constexpr char GOOD_STRIPE[] =
    "type = veldran_stripe;\n"
    "parameters clocks { input_clock_frequency = 20MHz; pll_ahb_bypass = true;"
    " pll_sdram_bypass = true; }\n"
    "parameters ebi { enabled = false; }\n"
    "parameters dpram { mode[0] = no_ports; }\n";

// A device block named "board" that states these things and has one good stripe.
std::string board_with(const std::string& statements) {
  return "device board {\n" + statements + "\nmodule stripe {\n" + GOOD_STRIPE + "}\n}\n";
}

std::string board_of(const std::string& family, const std::string& type) {
  return board_with("family = " + family + "; type = " + type + ";");
}

// Opens what is meant for derived classes.
class OPEN_DEVICE : public SBD_VELDRAN {
 public:
  using SBD_VELDRAN::m_chip_type;
  using SBD_VELDRAN::m_device_name;
  using SBD_VELDRAN::m_family;
  using SBD_VELDRAN::m_parameter_reader;
  using SBD_VELDRAN::m_processor_type;
  using SBD_VELDRAN::SBD_VELDRAN;
};

class DEVICE_OBJECT : public testing::Test {
 protected:
  DEVICE_OBJECT() { bind("board"); }

  void bind(const char* name) { m_device = std::make_unique<OPEN_DEVICE>(name); }

  void TearDown() override {
    // Whoever expects internal errors forgets them.
    EXPECT_EQ(m_recorder.conditions(), TEXTS{});
  }

  bool read(const std::string& text) {
    m_recorder.forget();
    return read_text(*m_device, text);
  }

  void expect_types(SBD_VELDRAN::DEVICE_FAMILY family, SBD_VELDRAN::CHIP_TYPE chip) const {
    EXPECT_EQ(m_device->m_family, family);
    EXPECT_EQ(m_device->m_chip_type, chip);
    EXPECT_EQ(static_cast<unsigned>(m_device->m_processor_type), static_cast<unsigned>(family));
    EXPECT_EQ(m_device->get_family(), m_device->m_family);
    EXPECT_EQ(m_device->get_chip_type(), m_device->m_chip_type);
    EXPECT_EQ(m_device->get_processor_type(), m_device->m_processor_type);
  }

  // Every query is one internal error, false and zero.
  void expect_no_reader() {
    EXPECT_EQ(m_device->get_parameter_reader(), nullptr);
    EXPECT_EQ(m_device->get_parameter_faults().size(), 0u);
    m_recorder.forget();
    bool flag = true;
    EXPECT_FALSE(m_device->get_parameter("boot_from_flash", flag));
    EXPECT_FALSE(flag);
    flag = true;
    EXPECT_FALSE(m_device->get_parameter("ebi", "enabled", flag));
    EXPECT_FALSE(flag);
    unsigned long dword = 5;
    EXPECT_FALSE(m_device->get_parameter("clocks.input_clock_frequency", dword));
    EXPECT_EQ(dword, 0u);
    dword = 5;
    EXPECT_FALSE(m_device->get_parameter("clocks", "input_clock_frequency", dword));
    EXPECT_EQ(dword, 0u);
    double number = 5;
    EXPECT_FALSE(m_device->get_parameter("sdram.refresh_period", number));
    EXPECT_EQ(number, 0.0);
    number = 5;
    EXPECT_FALSE(m_device->get_parameter("sdram", "refresh_period", number));
    EXPECT_EQ(number, 0.0);
    SBD_STRING text = "before";
    EXPECT_FALSE(m_device->get_parameter("endian", text));
    EXPECT_EQ(plain(text), "");
    text = "before";
    EXPECT_FALSE(m_device->get_parameter("dpram", "mode[0]", text));
    EXPECT_EQ(plain(text), "");
    EXPECT_EQ(m_recorder.conditions(), TEXTS(8, NO_READER));
    for (const RECORDED_ERROR& error : m_recorder.internal_errors()) {
      EXPECT_EQ(error.module, "SBD");
      EXPECT_EQ(error.source, "sbd_veldran");
    }
    EXPECT_TRUE(m_recorder.messages().empty());
    m_recorder.forget();
  }

  void expect_reader() {
    m_recorder.forget();
    ASSERT_NE(m_device->get_parameter_reader(), nullptr);
    unsigned long frequency = 0;
    EXPECT_TRUE(m_device->get_parameter("clocks.input_clock_frequency", frequency));
    EXPECT_EQ(frequency, 20000000u);
    EXPECT_TRUE(m_recorder.is_silent());
  }

  MESSAGE_RECORDER m_recorder;
  std::unique_ptr<OPEN_DEVICE> m_device;
};

// ---- Construction ------------------------------------------------------------------------------

TEST_F(DEVICE_OBJECT, StartsUnknownAndWithoutReader) {
  EXPECT_EQ(plain(m_device->get_device_name()), "board");
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
  expect_no_reader();
  bind("");
  EXPECT_EQ(plain(m_device->m_device_name), "");
  bind(nullptr);
  EXPECT_EQ(plain(m_device->m_device_name), "");
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, EnumeratorsAreNumbered) {
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::DF_ARM), 0);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::DF_MIPS), 1);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::DF_UNKNOWN), 2);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_QMXA10), 0);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_QMXA4), 1);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_QMXA1), 2);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_QMXM10), 3);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_QMXM4), 4);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_QMXM1), 5);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::CT_UNKNOWN), 6);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::PT_ARM), 0);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::PT_MIPS), 1);
  EXPECT_EQ(static_cast<int>(SBD_VELDRAN::PT_UNKNOWN), 2);
}

// ---- Families and chips ------------------------------------------------------------------------

struct CHIP_CASE {
  const char* name;
  SBD_VELDRAN::CHIP_TYPE type;
  SBD_VELDRAN::DEVICE_FAMILY family;
};

const std::vector<CHIP_CASE> CHIP_CASES = {
    {"qmxa10", SBD_VELDRAN::CT_QMXA10, SBD_VELDRAN::DF_ARM},
    {"qmxa4", SBD_VELDRAN::CT_QMXA4, SBD_VELDRAN::DF_ARM},
    {"qmxa1", SBD_VELDRAN::CT_QMXA1, SBD_VELDRAN::DF_ARM},
    {"qmxm10", SBD_VELDRAN::CT_QMXM10, SBD_VELDRAN::DF_MIPS},
    {"qmxm4", SBD_VELDRAN::CT_QMXM4, SBD_VELDRAN::DF_MIPS},
    {"qmxm1", SBD_VELDRAN::CT_QMXM1, SBD_VELDRAN::DF_MIPS},
};

TEST_F(DEVICE_OBJECT, ArmChipsGetTheirReader) {
  for (const CHIP_CASE& chip : CHIP_CASES) {
    if (chip.family != SBD_VELDRAN::DF_ARM) continue;
    SCOPED_TRACE(chip.name);
    bind("board");
    EXPECT_TRUE(read(board_of("veldran_arm", chip.name)));
    EXPECT_EQ(posted(m_recorder), TEXTS{});
    expect_types(SBD_VELDRAN::DF_ARM, chip.type);
    expect_reader();
    const SBD_PARAMETER_READER* const reader = m_device->get_parameter_reader();
    EXPECT_EQ(dynamic_cast<const SBD_QMXA1_PARAMETER_READER*>(reader) != nullptr,
              chip.type == SBD_VELDRAN::CT_QMXA1);
    EXPECT_EQ(dynamic_cast<const SBD_QMXA4_PARAMETER_READER*>(reader) != nullptr,
              chip.type == SBD_VELDRAN::CT_QMXA4);
    EXPECT_EQ(dynamic_cast<const SBD_QMXA10_PARAMETER_READER*>(reader) != nullptr,
              chip.type == SBD_VELDRAN::CT_QMXA10);
    EXPECT_EQ(reader, m_device->m_parameter_reader);
    EXPECT_EQ(plain(reader->get_module_name()), "board.stripe");
  }
}

TEST_F(DEVICE_OBJECT, MipsChipsAreRefusedWithoutAMessage) {
  for (const CHIP_CASE& chip : CHIP_CASES) {
    if (chip.family != SBD_VELDRAN::DF_MIPS) continue;
    SCOPED_TRACE(chip.name);
    EXPECT_FALSE(read(board_of("veldran_mips", chip.name)));
    EXPECT_TRUE(m_recorder.is_silent());
    expect_types(SBD_VELDRAN::DF_MIPS, chip.type);
    // The document is there all the same.
    EXPECT_TRUE(m_device->is_block_defined("board.stripe.clocks"));
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, MipsChipWithoutStripeIsGood) {
  EXPECT_TRUE(read("device board { family = veldran_mips; type = qmxm4; }"));
  EXPECT_TRUE(m_recorder.is_silent());
  expect_types(SBD_VELDRAN::DF_MIPS, SBD_VELDRAN::CT_QMXM4);
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, FamilyAndChipAreComparedInLowerCase) {
  EXPECT_TRUE(read(board_of("VELDRAN_ARM", "QMXA4")));
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA4);
  EXPECT_EQ(posted(m_recorder), TEXTS{});
  EXPECT_TRUE(read(board_of("Veldran_Arm", "qMXa10")));
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA10);
  EXPECT_FALSE(read(board_of("VELDRAN_MIPS", "QMXM1")));
  expect_types(SBD_VELDRAN::DF_MIPS, SBD_VELDRAN::CT_QMXM1);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DEVICE_OBJECT, ChipMustBeOfTheFamily) {
  for (const CHIP_CASE& chip : CHIP_CASES) {
    SCOPED_TRACE(chip.name);
    const bool is_arm = chip.family == SBD_VELDRAN::DF_ARM;
    EXPECT_FALSE(read(board_of(is_arm ? "veldran_mips" : "veldran_arm", chip.name)));
    EXPECT_EQ(posted(m_recorder), TEXTS{MISMATCH});
    expect_types(is_arm ? SBD_VELDRAN::DF_MIPS : SBD_VELDRAN::DF_ARM, chip.type);
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, UnknownFamilyIsTheOnlyMessageForAKnownChip) {
  for (const CHIP_CASE& chip : CHIP_CASES) {
    EXPECT_FALSE(read(board_of("Veldran_PPC", chip.name)));
    EXPECT_EQ(posted(m_recorder), TEXTS{family_error("veldran_ppc")}) << chip.name;
    expect_types(SBD_VELDRAN::DF_UNKNOWN, chip.type);
  }
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, QuotedFamilyIsAnotherText) {
  EXPECT_FALSE(read(board_of("\"Veldran_Arm\"", "\"QMXA4\"")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{family_error("\"veldran_arm\""), UNKNOWN_TYPE}));
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
}

TEST_F(DEVICE_OBJECT, UnknownChip) {
  for (const char* const type : {"qmxa2", "qmxa", "qmxa100", "xqmxa10", "\"qmxa10\"", "qmxm"}) {
    for (const char* const family : {"veldran_arm", "veldran_mips"}) {
      EXPECT_FALSE(read(board_of(family, type)));
      EXPECT_EQ(posted(m_recorder), TEXTS{UNKNOWN_TYPE}) << type;
      EXPECT_EQ(m_device->m_chip_type, SBD_VELDRAN::CT_UNKNOWN);
    }
  }
  expect_types(SBD_VELDRAN::DF_MIPS, SBD_VELDRAN::CT_UNKNOWN);
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, UnknownFamilyAndUnknownChip) {
  EXPECT_FALSE(read(board_of("acme", "Z80")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{family_error("acme"), UNKNOWN_TYPE}));
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
}

TEST_F(DEVICE_OBJECT, MissingFamilyDoesNotStopTheCheckOfTheType) {
  EXPECT_FALSE(read(board_with("type = qmxa4;")));
  EXPECT_EQ(posted(m_recorder), TEXTS{no_family_error("board")});
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_QMXA4);
  EXPECT_FALSE(read(board_with("type = qmxa2;")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{no_family_error("board"), UNKNOWN_TYPE}));
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
  EXPECT_FALSE(read(board_with("")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{no_family_error("board"), NO_TYPE}));
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, MissingType) {
  EXPECT_FALSE(read(board_with("family = veldran_arm;")));
  EXPECT_EQ(posted(m_recorder), TEXTS{NO_TYPE});
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_UNKNOWN);
  EXPECT_FALSE(read(board_with("family = other;")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{family_error("other"), NO_TYPE}));
}

TEST_F(DEVICE_OBJECT, OtherKindsOfValuesCountAsMissing) {
  for (const char* const value : {"= 1", "= true", "= {a, b}", "< board >"}) {
    EXPECT_FALSE(
        read(board_with("family " + std::string(value) + "; type " + std::string(value) + ";")));
    EXPECT_EQ(posted(m_recorder), (TEXTS{no_family_error("board"), NO_TYPE})) << value;
  }
  EXPECT_FALSE(read(board_with("bus family { veldran_arm = 1; } bus type { qmxa4 = 1; }")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{no_family_error("board"), NO_TYPE}));
}

// What is missing leaves the family and the chip as the last check left them.
TEST_F(DEVICE_OBJECT, MissingStatementsLeaveWhatWasKnown) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_FALSE(read(board_with("type = qmxa1;")));
  EXPECT_EQ(posted(m_recorder), TEXTS{no_family_error("board")});
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA1);
  EXPECT_FALSE(read(board_with("family = veldran_arm;")));
  EXPECT_EQ(posted(m_recorder), TEXTS{NO_TYPE});
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA1);
  // The chip that is stated has to match the family that was left.
  EXPECT_FALSE(read(board_with("type = qmxm1;")));
  EXPECT_EQ(posted(m_recorder), (TEXTS{no_family_error("board"), MISMATCH}));
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXM1);
}

TEST_F(DEVICE_OBJECT, FailedCheckKeepsTheDocument) {
  EXPECT_FALSE(read(board_of("acme", "qmxa4")));
  EXPECT_TRUE(m_device->is_block_defined("board.stripe"));
  SBD_STRING text;
  EXPECT_TRUE(m_device->get_value("board", "family", text));
  EXPECT_EQ(plain(text), "acme");
  expect_no_reader();
}

// ---- The device block --------------------------------------------------------------------------

TEST_F(DEVICE_OBJECT, DeviceNameIsFoundInAnyLetterCase) {
  bind("BOARD");
  EXPECT_TRUE(read("device Board {\nfamily = veldran_arm; type = qmxa1;\nmodule Stripe {\n" +
                   std::string(GOOD_STRIPE) + "}\n}\n"));
  EXPECT_EQ(posted(m_recorder), TEXTS{});
  expect_reader();
  EXPECT_EQ(plain(m_device->get_parameter_reader()->get_module_name()), "Board.Stripe");
}

TEST_F(DEVICE_OBJECT, MissingDeviceBlockIsNamedAsTheCallerDid) {
  bind("Other");
  EXPECT_FALSE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_EQ(posted(m_recorder), TEXTS{no_device_error("Other")});
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
  expect_no_reader();
  for (const char* const name : {" ", ".", "board.", ".board", "board.nothing", "boar", "board2"}) {
    bind(name);
    EXPECT_FALSE(read(board_of("veldran_arm", "qmxa4")));
    EXPECT_EQ(posted(m_recorder), TEXTS{no_device_error(name)});
  }
}

TEST_F(DEVICE_OBJECT, NameMustBeThatOfADeviceBlock) {
  for (const char* const name : {"board.stripe", "board.family", "board.stripe.clocks"}) {
    bind(name);
    EXPECT_FALSE(read(board_of("veldran_arm", "qmxa4")));
    EXPECT_EQ(posted(m_recorder), TEXTS{no_device_error(name)});
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, IndexedAndFurtherDeviceBlocks) {
  const std::string text = "device d[1] {\nfamily = veldran_arm; type = qmxa4;\nmodule m[0] {\n" +
                           std::string(GOOD_STRIPE) + "}\n}\n" + board_of("acme", "qmxa4");
  bind("D[1]");
  EXPECT_TRUE(read(text));
  EXPECT_EQ(posted(m_recorder), TEXTS{});
  expect_reader();
  bind("board");
  EXPECT_FALSE(read(text));
  EXPECT_EQ(posted(m_recorder), TEXTS{family_error("acme")});
}

TEST_F(DEVICE_OBJECT, WithoutADeviceNameTheFileIsReadAsSuch) {
  for (const char* const name : {static_cast<const char*>(nullptr), ""}) {
    bind(name);
    for (const std::string& text :
         {board_of("veldran_arm", "qmxa4"), board_of("acme", "nothing"), std::string()}) {
      EXPECT_TRUE(read(text));
      EXPECT_TRUE(m_recorder.is_silent());
      expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
      expect_no_reader();
    }
    EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
    EXPECT_TRUE(m_device->is_block_defined("board.stripe"));
    EXPECT_FALSE(read("device board { x = 08; }"));
    EXPECT_EQ(m_recorder.numbers(), std::vector<int>{2});
    m_recorder.forget();
  }
}

TEST_F(DEVICE_OBJECT, EmptyDocumentIsGood) {
  for (const char* const text : {"", "\n \t\r\n", "# only this\n", "# this\n\n# and this\n"}) {
    EXPECT_TRUE(read(text)) << text;
    EXPECT_TRUE(m_recorder.is_silent());
    expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, EmptyDocumentForgetsFamilyAndChip) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_TRUE(read("# nothing\n"));
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_EQ(m_device->m_family, SBD_VELDRAN::DF_UNKNOWN);
  EXPECT_EQ(m_device->m_chip_type, SBD_VELDRAN::CT_UNKNOWN);
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, BlockWithoutTheDeviceIsNotEmpty) {
  EXPECT_FALSE(read("# comment\ndevice other { x = 1; }"));
  EXPECT_EQ(posted(m_recorder), TEXTS{no_device_error("board")});
}

TEST_F(DEVICE_OBJECT, FaultsOfTheFormatComeFirst) {
  // No device check is made on a document that has a fault.
  EXPECT_FALSE(read("device board { family = acme }"));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{2});
  expect_no_reader();
  EXPECT_FALSE(read("device board { family = acme; family = acme; }"));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{3});
  EXPECT_FALSE(read("device board { family = acme; thing x { y = 1; } }"));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{5});
  EXPECT_FALSE(read("device board { family = acme; x < nowhere >; }"));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{4});
  EXPECT_FALSE(m_device->is_block_defined("board"));
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
}

// ---- check_device by itself --------------------------------------------------------------------

TEST_F(DEVICE_OBJECT, CheckNeedsADeviceName) {
  bind(nullptr);
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_FALSE(m_device->check_device());
  ASSERT_FALSE(m_recorder.conditions().empty());
  EXPECT_EQ(m_recorder.conditions().front(), NO_DEVICE_NAME);
  EXPECT_EQ(m_recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_veldran");
  m_recorder.forget();
}

TEST_F(DEVICE_OBJECT, CheckMayBeRepeated) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_TRUE(m_device->check_device());
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_TRUE(m_device->set_value("board", "type", SBD_STRING("qmxm1")));
  EXPECT_FALSE(m_device->check_device());
  EXPECT_EQ(posted(m_recorder), TEXTS{MISMATCH});
  expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXM1);
}

TEST_F(DEVICE_OBJECT, CheckOfAnEmptyDocument) {
  EXPECT_FALSE(m_device->check_device());
  EXPECT_EQ(posted(m_recorder), TEXTS{no_device_error("board")});
}

// ---- The stripe module -------------------------------------------------------------------------

std::string board_with_modules(const std::string& modules) {
  return "device board {\nfamily = veldran_arm; type = qmxa4;\n" + modules + "}\n";
}

std::string module_of(const std::string& name, const std::string& type) {
  return "module " + name + " { type = " + type + "; }\n";
}

TEST_F(DEVICE_OBJECT, WithoutAStripeTheFileIsGoodButHasNoParameters) {
  for (const std::string& modules :
       {std::string(), module_of("a", "other"), module_of("a", "\"veldran_stripe\""),
        std::string("module a { x = 1; }\n"), std::string("module a { type = 1; }\n"),
        std::string("bus a { type = veldran_stripe; }\n"),
        std::string("module a { type < board >; }\n"),
        std::string("device_type = veldran_stripe;\n")}) {
    EXPECT_TRUE(read(board_with_modules(modules))) << modules;
    EXPECT_TRUE(m_recorder.is_silent());
    expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA4);
    SBD_STRING name = "before";
    EXPECT_FALSE(m_device->get_module_ref_name(name));
    EXPECT_EQ(plain(name), "before");
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, StripeIsFoundAmongOtherModules) {
  EXPECT_TRUE(
      read(board_with_modules(module_of("a", "other") + "module b { x = 1; }\nmodule c {\n" +
                              GOOD_STRIPE + "}\n" + module_of("d", "other"))));
  EXPECT_EQ(posted(m_recorder), TEXTS{});
  expect_reader();
  SBD_STRING name;
  EXPECT_TRUE(m_device->get_module_ref_name(name));
  EXPECT_EQ(plain(name), "board.c");
}

TEST_F(DEVICE_OBJECT, StripeIsFoundAtAnyDepthAndInAnyLetterCase) {
  std::string stripe = GOOD_STRIPE;
  stripe.replace(stripe.find("veldran_stripe"), 14, "Veldran_STRIPE");
  EXPECT_TRUE(
      read(board_with_modules("bus B { module Outer { MODULE Inner {\n" + stripe + "} } }\n")));
  EXPECT_EQ(posted(m_recorder), TEXTS{});
  expect_reader();
  SBD_STRING name;
  EXPECT_TRUE(m_device->get_module_ref_name(name));
  EXPECT_EQ(plain(name), "board.B.Outer.Inner");
}

TEST_F(DEVICE_OBJECT, OnlyTheOwnDevicesStripeCounts) {
  const std::string text =
      board_with_modules("") + "device other {\nmodule stripe {\n" + GOOD_STRIPE + "}\n}\n";
  EXPECT_TRUE(read(text));
  EXPECT_TRUE(m_recorder.is_silent());
  expect_no_reader();
}

// ---- Turning to another device -----------------------------------------------------------------

TEST_F(DEVICE_OBJECT, SelectedDevicesAreReadAsIfBoundFromTheStart) {
  const std::string other = "device other {\nfamily = veldran_arm; type = qmxa10;\nmodule m {\n" +
                            std::string(GOOD_STRIPE) + "endian = middle;\n}\n}\n";
  bind(nullptr);
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4") + other));
  EXPECT_EQ(m_device->get_parameter_reader(), nullptr);
  for (int round = 0; round != 2; ++round) {
    m_recorder.forget();
    EXPECT_TRUE(m_device->select_device("BOARD"));
    EXPECT_TRUE(m_recorder.is_silent());
    EXPECT_EQ(plain(m_device->get_device_name()), "BOARD");
    expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA4);
    expect_reader();
    EXPECT_EQ(m_device->get_parameter_faults().size(), 0u);

    m_recorder.forget();
    EXPECT_FALSE(m_device->select_device("other"));
    EXPECT_EQ(posted(m_recorder), TEXTS{invalid("endian")});
    expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA10);
    expect_reader();
    EXPECT_EQ(m_device->get_parameter_faults().size(), 1u);
  }
}

TEST_F(DEVICE_OBJECT, SelectedDeviceHasNothingOfTheOneBefore) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4") + "device bare { x = 1; }\n" +
                   "device typed { type = qmxm4; }\n"));
  m_recorder.forget();
  EXPECT_FALSE(m_device->select_device("bare"));
  EXPECT_EQ(posted(m_recorder), (TEXTS{no_family_error("bare"), NO_TYPE}));
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
  expect_no_reader();
  EXPECT_TRUE(m_device->select_device("board"));
  m_recorder.forget();
  // With the family of the one before, this would be a mismatch, too.
  EXPECT_FALSE(m_device->select_device("typed"));
  EXPECT_EQ(posted(m_recorder), TEXTS{no_family_error("typed")});
  expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_QMXM4);
}

TEST_F(DEVICE_OBJECT, SelectingNoDeviceLeavesTheFormat) {
  for (const char* const nothing : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
    EXPECT_TRUE(m_device->select_device(nothing));
    EXPECT_TRUE(m_recorder.is_silent());
    expect_types(SBD_VELDRAN::DF_UNKNOWN, SBD_VELDRAN::CT_UNKNOWN);
    expect_no_reader();
    EXPECT_NE(m_device->get_para_value("board", "family"), nullptr);
    bind("board");
  }
}

TEST_F(DEVICE_OBJECT, SelectingInAnEmptyDocumentIsGood) {
  EXPECT_TRUE(m_device->select_device("any"));
  EXPECT_TRUE(read(""));
  EXPECT_TRUE(m_device->select_device("any"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DEVICE_OBJECT, SelectingAnUnknownDevice) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_FALSE(m_device->select_device("broad"));
  EXPECT_EQ(posted(m_recorder), TEXTS{no_device_error("broad")});
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, SeveralStripesArePostedButGood) {
  for (const std::string& modules :
       {module_of("a", "veldran_stripe") + module_of("b", "veldran_stripe"),
        module_of("a", "VELDRAN_STRIPE") + module_of("x", "other") +
            module_of("b", "veldran_stripe") + module_of("c", "veldran_stripe"),
        std::string("module a { type = veldran_stripe; module b { type = veldran_stripe; } }\n")}) {
    EXPECT_TRUE(read(board_with_modules(modules)));
    EXPECT_EQ(posted(m_recorder), TEXTS{SEVERAL_MODULES});
    expect_types(SBD_VELDRAN::DF_ARM, SBD_VELDRAN::CT_QMXA4);
    m_recorder.forget();
    SBD_STRING name = "before";
    EXPECT_FALSE(m_device->get_module_ref_name(name));
    EXPECT_EQ(plain(name), "before");
    EXPECT_EQ(posted(m_recorder), TEXTS{SEVERAL_MODULES});
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, SeveralStripesOfAMipsChipAreGoodToo) {
  EXPECT_TRUE(read("device board { family = veldran_mips; type = qmxm10;\n" +
                   module_of("a", "veldran_stripe") + module_of("b", "veldran_stripe") + "}\n"));
  EXPECT_EQ(posted(m_recorder), TEXTS{SEVERAL_MODULES});
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, ModuleNameNeedsADeviceName) {
  bind("");
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  SBD_STRING name = "before";
  EXPECT_FALSE(m_device->get_module_ref_name(name));
  EXPECT_EQ(plain(name), "before");
  ASSERT_FALSE(m_recorder.conditions().empty());
  EXPECT_EQ(m_recorder.conditions().front(), NO_DEVICE_NAME);
  EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_veldran");
  EXPECT_TRUE(m_recorder.messages().empty());
  m_recorder.forget();
}

TEST_F(DEVICE_OBJECT, ModuleNameOfAnUnknownDevice) {
  for (const char* const device : {"nothing", "board.family"}) {
    bind(device);
    EXPECT_FALSE(read(board_of("veldran_arm", "qmxa4")));
    m_recorder.forget();
    SBD_STRING name = "before";
    EXPECT_FALSE(m_device->get_module_ref_name(name));
    EXPECT_EQ(plain(name), "before");
    EXPECT_TRUE(m_recorder.is_silent());
  }
}

TEST_F(DEVICE_OBJECT, ModuleNameIsAskedForInALowerCasedDevice) {
  bind("BoArD");
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  SBD_STRING name;
  EXPECT_TRUE(m_device->get_module_ref_name(name));
  EXPECT_EQ(plain(name), "board.stripe");
}

// ---- The chip's name ---------------------------------------------------------------------------

TEST_F(DEVICE_OBJECT, ChipTypeNameIsTheTypeInLowerCase) {
  EXPECT_TRUE(read(board_of("veldran_arm", "QmxA4")));
  SBD_STRING name;
  EXPECT_TRUE(m_device->get_chip_type_name(name));
  EXPECT_EQ(plain(name), "qmxa4");
  EXPECT_FALSE(read(board_of("acme", "\"Some Chip\"")));
  EXPECT_TRUE(m_device->get_chip_type_name(name));
  EXPECT_EQ(plain(name), "\"some chip\"");
}

TEST_F(DEVICE_OBJECT, ChipTypeNameMayBeUnknown) {
  SBD_STRING name = "before";
  EXPECT_FALSE(m_device->get_chip_type_name(name));
  EXPECT_FALSE(read(board_with("family = veldran_arm;")));
  EXPECT_FALSE(m_device->get_chip_type_name(name));
  EXPECT_FALSE(read(board_with("family = veldran_arm; type = 4;")));
  EXPECT_FALSE(m_device->get_chip_type_name(name));
  EXPECT_TRUE(read("# nothing\n"));
  EXPECT_FALSE(m_device->get_chip_type_name(name));
  bind("");
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_FALSE(m_device->get_chip_type_name(name));
  bind("other");
  EXPECT_FALSE(read(board_of("veldran_arm", "qmxa4")));
  m_recorder.forget();
  EXPECT_FALSE(m_device->get_chip_type_name(name));
  EXPECT_EQ(plain(name), "before");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DEVICE_OBJECT, ChipTypeNameFollowsTheDocument) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_TRUE(m_device->set_value("board", "type", SBD_STRING("QMXA10")));
  SBD_STRING name;
  EXPECT_TRUE(m_device->get_chip_type_name(name));
  EXPECT_EQ(plain(name), "qmxa10");
  EXPECT_EQ(m_device->get_chip_type(), SBD_VELDRAN::CT_QMXA4);
}

// ---- Reading -----------------------------------------------------------------------------------

TEST_F(DEVICE_OBJECT, FileIsReadAsATextIs) {
  const TEMPORARY_DIRECTORY directory;
  const std::string good = directory.write("good.sbd", board_of("veldran_arm", "qmxa4"));
  EXPECT_TRUE(m_device->read(good.c_str()));
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_STREQ(m_device->get_file_name(), good.c_str());
  expect_reader();

  SETTINGS settings = minimal_settings();
  settings.set("clocks.ahb1_divide", whole(3)).remove("clocks.input_clock_frequency");
  const std::string bad = directory.write("bad.sbd", descriptor_text(settings, CHIP::QMXA10));
  EXPECT_FALSE(m_device->read(bad.c_str()));
  EXPECT_EQ(posted(m_recorder),
            (TEXTS{missing("clocks.input_clock_frequency"), invalid("clocks.ahb1_divide")}));
  EXPECT_STREQ(m_device->get_file_name(), bad.c_str());
}

TEST_F(DEVICE_OBJECT, FileThatCanNotBeOpened) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.path_of("none.sbd");
  EXPECT_FALSE(m_device->read(path.c_str()));
  EXPECT_EQ(posted(m_recorder), TEXTS{"1 " + file_error_text(path)});
  expect_no_reader();
  m_recorder.forget();
  // It leaves the document, but not the parameters.
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_FALSE(m_device->read(path.c_str()));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{1});
  EXPECT_TRUE(m_device->is_block_defined("board.stripe"));
  expect_no_reader();
}

TEST_F(DEVICE_OBJECT, ReadIsOverriddenForCallersOfTheBase) {
  const TEMPORARY_DIRECTORY directory;
  SBD_FILE_PARSER& document = *m_device;
  EXPECT_FALSE(document.read(directory.write("d.sbd", board_of("veldran_mips", "qmxm1")).c_str()));
  EXPECT_TRUE(m_recorder.is_silent());
  const std::string text = board_of("veldran_arm", "qmxa1");
  EXPECT_TRUE(document.read_text(text.data(), text.size(), "d.sbd"));
  expect_reader();
}

TEST_F(DEVICE_OBJECT, MessagesComeInTheOrderOfTheTables) {
  SETTINGS settings = minimal_settings();
  settings
      .set("endian", keyword("middle"))                      // texts
      .set("sdram.enabled", flag(true))                      // numbers
      .set("sdram.cas_latency", keyword("fast"))             // numbers
      .set("sdram.refresh_period", fraction("7812.5"))       // good
      .set("registers.address_base", whole(0))               // good
      .set("registers.address_size", whole(16))              // whole numbers
      .set("clocks.ahb2_divide", whole(0))                   // whole numbers
      .set("boot_from_flash", keyword("maybe"))              // flags
      .set("hold_processor", whole(1))                       // flags
      .set("pld.pld_to_stripe_interrupt_mode", flag(true));  // texts
  const TEXTS expected = {
      invalid("boot_from_flash"),
      invalid("hold_processor"),
      missing("programming_clock_frequency"),
      invalid("clocks.ahb2_divide"),
      missing("sdram.data_width"),
      missing("sdram.row_address_bits"),
      missing("sdram.column_address_bits"),
      invalid("registers.address_size"),
      missing("sdram.active_to_read_or_write_delay"),
      missing("sdram.active_to_precharge_command"),
      missing("sdram.active_banka_to_bankb_command"),
      missing("sdram.precharge_command_period"),
      missing("sdram.write_recovery_time"),
      missing("sdram.active_to_active_command_period"),
      missing("sdram.active_to_read_or_write_delay"),
      missing("sdram.auto_refresh_command_period"),
      invalid("sdram.cas_latency"),
      invalid("endian"),
      invalid("sdram.input_pin_standard"),
      invalid("sdram.output_pin_standard"),
      invalid("sdram.type"),
      invalid("pld.pld_to_stripe_interrupt_mode"),
  };
  EXPECT_FALSE(read(descriptor_text(settings, CHIP::QMXA4)));
  EXPECT_EQ(posted(m_recorder), expected);
  EXPECT_EQ(expected_messages(EXPECTED_DEVICE(settings, CHIP::QMXA4)), expected);
  for (const RECORDED_MESSAGE& message : m_recorder.messages()) {
    EXPECT_EQ(message.severity, sbd_host::SEVERITY::ERROR);
    EXPECT_EQ(message.key, message.number == 12 ? "ESBD_SBD_PARAMETER_MISSING_ERROR"
                                                : "ESBD_SBD_PARAMETER_VALUE_ERROR");
  }
}

TEST_F(DEVICE_OBJECT, KeysOfTheDeviceMessages) {
  EXPECT_FALSE(read(board_with("")));
  EXPECT_FALSE(m_recorder.messages().empty());
  EXPECT_EQ(m_recorder.messages().front().key, "ESBD_FAMILY_NOT_DEFINED_ERROR");
  EXPECT_EQ(m_recorder.messages().back().key, "ESBD_SBD_VEL_DEVICE_ERROR");
  EXPECT_FALSE(read(board_of("acme", "qmxa4")));
  EXPECT_EQ(m_recorder.messages().front().key, "ESBD_UNSUPPORTED_FAMILY_ERROR");
  EXPECT_TRUE(read(
      board_with_modules(module_of("a", "veldran_stripe") + module_of("b", "veldran_stripe"))));
  EXPECT_EQ(m_recorder.messages().front().key, "ESBD_SBD_VEL_MODULE_ERROR");
}

TEST_F(DEVICE_OBJECT, ParametersStayAfterFaults) {
  EXPECT_FALSE(read(descriptor_text(minimal_settings().set("endian", keyword("x")), CHIP::QMXA1)));
  m_recorder.forget();
  expect_reader();
  SBD_STRING text;
  EXPECT_TRUE(m_device->get_parameter("endian", text));
  EXPECT_EQ(plain(text), "x");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DEVICE_OBJECT, ParametersDoNotFollowTheDocument) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_TRUE(m_device->set_value("board.stripe.clocks", "input_clock_frequency", 1UL, 10,
                                  SBD_FILE_PARSER::SBD_PARA_VALUE::QU_NONE));
  expect_reader();
  m_device->clear();
  expect_reader();
}

// ---- Without memory ----------------------------------------------------------------------------

// Whichever allocation fails: nothing is thrown or lost, what is told to be good is complete, and
// the object can be used again.
TEST_F(DEVICE_OBJECT, EveryAllocationMayFail) {
  // Names too long to lie in the strings themselves.
  STYLE style;
  style.device = "a_board_with_a_rather_long_name";
  style.module = "a_stripe_with_a_rather_long_name";
  const SETTINGS good = minimal_settings().set("endian", keyword("BIG"));
  const SETTINGS bad = full_settings(CHIP::QMXA4)
                           .set("ebi.clock_divide", whole(0))
                           .set("endian", keyword("neither_of_the_two_that_there_are"))
                           .remove("dpram.address_range[1]");
  for (const SETTINGS& settings : {good, bad}) {
    const std::string text = descriptor_text(settings, CHIP::QMXA4, style);
    const EXPECTED_DEVICE expected(settings, CHIP::QMXA4);
    for (std::size_t count = 1; count < 200; ++count) {
      const bool and_later = count % 2 == 0;
      SCOPED_TRACE(std::to_string(count / 2) + (and_later ? " and later" : ""));
      OPEN_DEVICE device(style.device.c_str());
      sbd_host::fail_allocation("SBD", count / 2 + 1, and_later);
      const bool is_good = read_text(device, text);
      // Nor may asking throw.
      SBD_STRING endian;
      double frequency = 0;
      unsigned long width = 0;
      device.get_parameter("endian", endian);
      device.get_sdram_clock_frequency(frequency);
      device.get_dpram_data_width(0, width);
      sbd_host::fail_allocation("SBD", 0, false);
      if (is_good) {
        EXPECT_TRUE(expected.is_good());
        expect_all_values(device, expected, m_recorder);
      }
      m_recorder.forget();
      EXPECT_EQ(read_text(device, text), expected.is_good());
      EXPECT_EQ(posted(m_recorder), expected_messages(expected));
      expect_all_values(device, expected, m_recorder);
      if (HasFailure()) return;
    }
  }
}

// ---- Two-name forms and null names -------------------------------------------------------------

TEST_F(DEVICE_OBJECT, NullNamesAreInternalErrors) {
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  const char* const both = "block_name != NULL && parameter_name != NULL";
  const char* const unread = "Parameter board.stripe. has not been read from the SBD file";
  const char* const none = nullptr;
  bool flag = true;
  EXPECT_FALSE(m_device->get_parameter(none, "enabled", flag));
  EXPECT_FALSE(flag);
  unsigned long dword = 5;
  EXPECT_FALSE(m_device->get_parameter("ebi", none, dword));
  EXPECT_EQ(dword, 0u);
  double number = 5;
  EXPECT_FALSE(m_device->get_parameter(none, none, number));
  EXPECT_EQ(number, 0.0);
  SBD_STRING text = "before";
  EXPECT_FALSE(m_device->get_parameter(none, "x", text));
  EXPECT_EQ(plain(text), "");
  EXPECT_EQ(m_recorder.conditions(),
            (TEXTS{both, unread, both, unread, both, unread, both, unread}));
  m_recorder.forget();
  EXPECT_FALSE(m_device->get_parameter(none, flag));
  EXPECT_FALSE(m_device->get_parameter(none, dword));
  EXPECT_FALSE(m_device->get_parameter(none, number));
  EXPECT_FALSE(m_device->get_parameter(none, text));
  EXPECT_EQ(m_recorder.conditions(),
            (TEXTS{"reference_name != NULL", unread, "reference_name != NULL", unread,
                   "reference_name != NULL", unread, "reference_name != NULL", unread}));
  m_recorder.forget();
}

TEST_F(DEVICE_OBJECT, MissingReaderIsReportedBeforeNullNames) {
  const char* const none = nullptr;
  bool flag = true;
  EXPECT_FALSE(m_device->get_parameter(none, none, flag));
  EXPECT_FALSE(flag);
  EXPECT_EQ(m_recorder.conditions().front(), NO_READER);
  m_recorder.forget();
}

// ---- Reading again -----------------------------------------------------------------------------

TEST_F(DEVICE_OBJECT, SecondReadReplacesTheFirst) {
  EXPECT_TRUE(read(descriptor_text(full_settings(CHIP::QMXA10), CHIP::QMXA10)));
  EXPECT_EQ(posted(m_recorder), TEXTS{});
  for (int count = 0; count < 3; ++count) {
    EXPECT_TRUE(read(board_of("veldran_arm", "qmxa1")));
    expect_reader();
    bool flag = true;
    EXPECT_TRUE(m_device->get_parameter("sdram.enabled", flag));
    EXPECT_FALSE(flag);
    EXPECT_NE(dynamic_cast<const SBD_QMXA1_PARAMETER_READER*>(m_device->get_parameter_reader()),
              nullptr);
  }
}

TEST_F(DEVICE_OBJECT, SecondReadWithoutParametersDropsThoseOfTheFirst) {
  for (const std::string& text :
       {board_of("veldran_mips", "qmxm4"), board_of("acme", "qmxa4"), board_with_modules(""),
        std::string("# nothing\n"), std::string("device other { x = 1; }"),
        std::string("device {")}) {
    EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
    expect_reader();
    read(text);
    expect_no_reader();
  }
}

TEST_F(DEVICE_OBJECT, FaultsAreThoseOfTheLastRead) {
  const std::string bad = descriptor_text(
      minimal_settings().set("endian", keyword("x")).set("ebi.clock_divide", whole(17)),
      CHIP::QMXA1);
  EXPECT_FALSE(read(bad));
  EXPECT_FALSE(read(bad));
  ASSERT_EQ(m_device->get_parameter_faults().size(), 2u);
  EXPECT_EQ(plain(m_device->get_parameter_faults()[0].reference), "ebi.clock_divide");
  EXPECT_EQ(plain(m_device->get_parameter_faults()[1].reference), "endian");
  EXPECT_TRUE(read(board_of("veldran_arm", "qmxa4")));
  EXPECT_EQ(m_device->get_parameter_faults().size(), 0u);
}

// ---- While messages are posted -----------------------------------------------------------------

TEST_F(DEVICE_OBJECT, PlaceAndFaultAreKnownWhileAMessageIsPosted) {
  const std::string text =
      "device board {\nfamily = veldran_arm; type = qmxa4;\nmodule stripe {\n"
      "type = veldran_stripe;\nendian = middle;\n"
      "parameters clocks {\npll_ahb_bypass = true; pll_sdram_bypass = true;\n}\n"
      "parameters ebi { clock_divide = 17; enabled = false; }\n"
      "parameters dpram { mode[0] = one_port; }\n}\n}\n";
  TEXTS told;
  m_recorder.on_message = [&](const RECORDED_MESSAGE& message) {
    ASSERT_FALSE(m_device->get_parameter_faults().empty());
    const SBD_PARAMETER_FAULT& fault = m_device->get_parameter_faults().back();
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_device->get_fault_range(range));
    told.push_back(std::to_string(message.number) + " " + plain(fault.reference) + " at line " +
                   std::to_string(range.line) + ": " + text.substr(range.offset, range.length));
  };
  EXPECT_FALSE(read(text));
  EXPECT_EQ(told, (TEXTS{"12 clocks.input_clock_frequency at line 6: clocks",
                         "13 ebi.clock_divide at line 9: clock_divide = 17;",
                         "12 dpram.address_range[0] at line 10: dpram",
                         "13 endian at line 5: endian = middle;"}));
  EXPECT_EQ(m_recorder.messages().size(), 4u);
}

TEST_F(DEVICE_OBJECT, PlaceOfAFaultOfTheBlockIsAStatementOrItsName) {
  std::string text;
  TEXTS told;
  m_recorder.on_message = [&](const RECORDED_MESSAGE& message) {
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_device->get_fault_range(range));
    told.push_back(std::to_string(message.number) + " " + text.substr(range.offset, range.length));
  };
  text = "device board { family = x; type = y; }";
  EXPECT_FALSE(read(text));
  text = "device board { z = 1; }";
  EXPECT_FALSE(read(text));
  text = "device board { family = veldran_mips; type = qmxa4; }";
  EXPECT_FALSE(read(text));
  EXPECT_EQ(told,
            (TEXTS{"14 family = x;", "6 type = y;", "15 board", "6 board", "6 type = qmxa4;"}));
}

TEST_F(DEVICE_OBJECT, PlaceOfAMissingParameterIsTheInnermostBlock) {
  std::vector<unsigned long> lines;
  m_recorder.on_message = [&](const RECORDED_MESSAGE&) {
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_device->get_fault_range(range));
    lines.push_back(range.line);
  };
  EXPECT_FALSE(
      read("device board {\nfamily = veldran_arm; type = qmxa4;\nmodule stripe {\n"
           "type = veldran_stripe;\nparameters ebi { enabled = false; }\n}\n}\n"));
  // Without the block of the parameter it is the stripe.
  EXPECT_EQ(lines, std::vector<unsigned long>(m_recorder.messages().size(), 3));
  EXPECT_GT(lines.size(), 5u);
}

// ---- Reading, checking and the hooks of the chip's readers --------------------------------------

// A reader that lacks some rules.
class READER_WITHOUT_RULES : public SBD_QMXA4_PARAMETER_READER {
 public:
  using SBD_PARAMETER_READER::m_post_messages;
  using SBD_PARAMETER_READER::m_report_unread;
  using SBD_QMXA4_PARAMETER_READER::SBD_QMXA4_PARAMETER_READER;

  bool is_family_specific_parameter_required(const SBD_STRING& name,
                                             bool& required) const override {
    if (plain(name) == lacking_requirement) {
      if (sets_required) required = false;
      return false;
    }
    return SBD_QMXA4_PARAMETER_READER::is_family_specific_parameter_required(name, required);
  }
  bool validate_family_specific_parameter(const SBD_STRING& name, bool& valid) const override {
    asked.push_back(plain(name));
    if (plain(name) == lacking_value) return false;
    return SBD_QMXA4_PARAMETER_READER::validate_family_specific_parameter(name, valid);
  }

  std::string lacking_requirement, lacking_value;
  bool sets_required = false;
  mutable TEXTS asked;
};

class DEVICE_READER : public DEVICE_OBJECT {
 protected:
  // A reader of its own over a document, which has read but not validated.
  void make_reader(const SETTINGS& settings) {
    read(descriptor_text(settings, CHIP::QMXA4));
    m_recorder.forget();
    m_reader = std::make_unique<READER_WITHOUT_RULES>(*m_device, SBD_STRING("board.stripe"));
    EXPECT_TRUE(m_reader->read_all_parameters());
    EXPECT_TRUE(m_recorder.is_silent());
  }
  void TearDown() override {
    m_reader.reset();
    DEVICE_OBJECT::TearDown();
  }

  std::unique_ptr<READER_WITHOUT_RULES> m_reader;
};

TEST_F(DEVICE_READER, ReportsUnreadNamesAndPosts) {
  make_reader(minimal_settings());
  EXPECT_TRUE(m_reader->m_report_unread);
  EXPECT_TRUE(m_reader->m_post_messages);
  EXPECT_TRUE(m_reader->validate_all_parameters());
  bool is_defined = true, has_value = true;
  EXPECT_FALSE(m_reader->lookup_bool_parameter("never", is_defined, has_value, false));
  EXPECT_EQ(m_recorder.conditions(),
            TEXTS{"Parameter board.stripe.never has not been read from the SBD file"});
  m_recorder.forget();
}

TEST_F(DEVICE_READER, ReadingAllAgainChangesNothingAndTakesNoMemory) {
  make_reader(minimal_settings());
  EXPECT_TRUE(m_reader->read_all_parameters());
  const std::size_t kept = sbd_host::get_memory_account("SBD").live_bytes;
  for (int i = 0; i != 10; i++) EXPECT_TRUE(m_reader->read_all_parameters());
  EXPECT_EQ(sbd_host::get_memory_account("SBD").live_bytes, kept);
  EXPECT_TRUE(m_reader->validate_all_parameters());
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DEVICE_READER, ReadingDoesNotValidate) {
  make_reader(minimal_settings());
  bool flag = false;
  EXPECT_TRUE(m_reader->get_parameter("boot_from_flash", flag));
  EXPECT_TRUE(flag);
  EXPECT_EQ(m_recorder.conditions(),
            TEXTS{"Parameter board.stripe.boot_from_flash has not been validated."});
  m_recorder.forget();
  EXPECT_TRUE(m_reader->validate_all_parameters());
  EXPECT_TRUE(m_reader->get_parameter("boot_from_flash", flag));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DEVICE_READER, MissingRequirementRuleIsAnInternalErrorAndCountsAsRequired) {
  make_reader(minimal_settings());
  m_reader->lacking_requirement = "sdram.data_width";
  EXPECT_FALSE(m_reader->validate_all_parameters());
  EXPECT_EQ(m_recorder.conditions(),
            TEXTS{"No code to check if parameter sdram.data_width is required."});
  EXPECT_EQ(m_recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_veldran_parameter_reader");
  EXPECT_EQ(posted(m_recorder), TEXTS{missing("sdram.data_width")});
  m_recorder.forget();
  // A hook that has no rule may still change the answer.
  m_reader->sets_required = true;
  EXPECT_FALSE(m_reader->is_parameter_required("sdram.data_width"));
  EXPECT_EQ(m_recorder.conditions().size(), 1u);
  m_recorder.forget();
}

TEST_F(DEVICE_READER, MissingValueRuleIsAnInternalErrorAndLeavesTheMarkOff) {
  make_reader(minimal_settings().set("ebi.clock_divide", whole(1000)));
  m_reader->lacking_value = "ebi.clock_divide";
  EXPECT_TRUE(m_reader->validate_all_parameters());
  EXPECT_EQ(m_recorder.conditions(), TEXTS{"No code to validate parameter ebi.clock_divide"});
  EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_veldran_parameter_reader");
  m_recorder.forget();
  unsigned long divide = 0;
  EXPECT_TRUE(m_reader->get_parameter("ebi.clock_divide", divide));
  EXPECT_EQ(divide, 1000u);
  EXPECT_EQ(m_recorder.conditions(),
            TEXTS{"Parameter board.stripe.ebi.clock_divide has not been validated."});
  m_recorder.forget();
}

TEST_F(DEVICE_READER, WithoutPostingTheResultIsTheSame) {
  make_reader(minimal_settings()
                  .set("ebi.clock_divide", whole(17))
                  .set("dpram.mode[0]", keyword("one_port")));
  m_reader->m_post_messages = false;
  EXPECT_FALSE(m_reader->validate_all_parameters());
  EXPECT_TRUE(m_recorder.is_silent());
  unsigned long divide = 0;
  EXPECT_TRUE(m_reader->get_parameter("ebi.clock_divide", divide));
  EXPECT_TRUE(m_recorder.is_silent());
  m_reader->m_post_messages = true;
  EXPECT_FALSE(m_reader->validate_all_parameters());
  EXPECT_EQ(posted(m_recorder),
            (TEXTS{invalid("ebi.clock_divide"), missing("dpram.address_range[0]")}));
}

TEST_F(DEVICE_READER, OnlyValuesThatHaveARuleAndAreStatedAreChecked) {
  make_reader(minimal_settings()
                  .set("clocks.pll_ahb_m", whole(0))  // not required
                  .set("uart.enabled", flag(false))   // no rule
                  .set("uart.input_pin_standard", keyword("x"))
                  .set("ebi.clock_divide", keyword("x")));  // no value
  m_reader->asked.clear();
  EXPECT_FALSE(m_reader->validate_all_parameters());
  EXPECT_EQ(posted(m_recorder), TEXTS{invalid("ebi.clock_divide")});
  EXPECT_EQ(
      m_reader->asked,
      (TEXTS{"clocks.input_clock_frequency", "configuration_device", "ebi.byte_enable_polarity",
             "ebi.output_enable_polarity", "ebi.write_enable_polarity", "dpram.mode[0]",
             "dpram.mode[1]", "pld.pld_to_stripe_interrupt_mode",
             "ebi.region[0].chip_select_polarity", "ebi.region[1].chip_select_polarity",
             "ebi.region[2].chip_select_polarity", "ebi.region[3].chip_select_polarity"}));
}

// One parameter judged by itself, with all that its row and its lookup may say.
TEST_F(DEVICE_READER, OneParameterIsJudged) {
  using READER = SBD_VELDRAN_PARAMETER_READER;
  make_reader(minimal_settings()
                  .set("ebi.clock_divide", whole(17))
                  .set("sdram.enabled", flag(false))
                  .set("sdram.row_address_bits", whole(8))
                  .set("clocks.ahb1_divide", whole(2)));
  const auto judge = [&](const char* name, bool is_defined, bool has_value,
                         READER::REQUIRED requirement, bool validate_value) {
    m_recorder.forget();
    const bool result =
        m_reader->validate_parameter(name, is_defined, has_value, requirement, validate_value);
    EXPECT_EQ(m_recorder.conditions(), TEXTS{});
    EXPECT_EQ(result, m_recorder.messages().empty());
    return result ? std::string() : posted(m_recorder).front();
  };
  const std::string divide = "ebi.clock_divide", bits = "sdram.row_address_bits";
  for (const bool is_checked : {false, true}) {
    for (const bool has_value : {false, true}) {
      EXPECT_EQ(judge(divide.c_str(), false, has_value, READER::RQ_OPTIONAL, is_checked), "");
      EXPECT_EQ(judge(divide.c_str(), false, has_value, READER::RQ_ALWAYS, is_checked),
                missing(divide));
      EXPECT_EQ(judge(bits.c_str(), false, has_value, READER::RQ_BY_RULE, is_checked), "");
    }
    EXPECT_EQ(judge(divide.c_str(), true, false, READER::RQ_OPTIONAL, is_checked), invalid(divide));
    EXPECT_EQ(judge(divide.c_str(), true, false, READER::RQ_ALWAYS, is_checked), invalid(divide));
    EXPECT_EQ(judge(bits.c_str(), true, false, READER::RQ_BY_RULE, is_checked), invalid(bits));
    EXPECT_EQ(judge(bits.c_str(), true, true, READER::RQ_BY_RULE, is_checked), "");
    EXPECT_EQ(judge("clocks.ahb1_divide", true, true, READER::RQ_OPTIONAL, is_checked), "");
    EXPECT_EQ(judge("clocks.ahb1_divide", true, true, READER::RQ_ALWAYS, is_checked), "");
  }
  EXPECT_EQ(judge(divide.c_str(), true, true, READER::RQ_OPTIONAL, false), "");
  EXPECT_EQ(judge(divide.c_str(), true, true, READER::RQ_OPTIONAL, true), invalid(divide));
  EXPECT_EQ(judge(divide.c_str(), true, true, READER::RQ_ALWAYS, false), "");
  EXPECT_EQ(judge(divide.c_str(), true, true, READER::RQ_ALWAYS, true), invalid(divide));
  // The rules look at the value while they require it.
  make_reader(minimal_settings().set("sdram.enabled", flag(true)).set(bits, whole(8)));
  EXPECT_EQ(judge(bits.c_str(), true, true, READER::RQ_BY_RULE, true), invalid(bits));
  EXPECT_EQ(judge(bits.c_str(), true, true, READER::RQ_BY_RULE, false), "");
  EXPECT_EQ(judge(bits.c_str(), false, true, READER::RQ_BY_RULE, false), missing(bits));
  m_recorder.forget();
}

TEST_F(DEVICE_READER, DefaultDoesNotStandInForARequiredParameterButStays) {
  make_reader(minimal_settings());
  EXPECT_FALSE(m_reader->validate_parameter("ebi.clock_divide", false, true,
                                            SBD_VELDRAN_PARAMETER_READER::RQ_ALWAYS, true));
  EXPECT_EQ(posted(m_recorder), TEXTS{missing("ebi.clock_divide")});
  m_recorder.forget();
  unsigned long divide = 0;
  EXPECT_TRUE(m_reader->get_parameter("ebi.clock_divide", divide));
  EXPECT_EQ(divide, 16u);
  EXPECT_TRUE(m_recorder.is_silent());
}

// Requirements and rules look at values before anything is validated.
TEST_F(DEVICE_READER, RulesDoNotAskForValidation) {
  make_reader(full_settings(CHIP::QMXA4));
  for (const PARAMETER_ROW& row : rows_of(CHIP::QMXA4)) {
    const SBD_STRING name(row.reference().c_str());
    if (row.requirement == REQUIREMENT::BY_RULE) m_reader->is_parameter_required(name);
    bool is_valid = false;
    if (row.is_value_checked) m_reader->validate_family_specific_parameter(name, is_valid);
  }
  EXPECT_TRUE(m_recorder.is_silent());
}

// A module that was entered behind the reading hides the one that was read from.
TEST_F(DEVICE_READER, WhatIsReadLaterComesFromTheDocumentAsItIsThen) {
  make_reader(minimal_settings());
  SBD_NODE* const board = m_device->get_ref_object("board", nullptr);
  SBD_NODE* const stripe = enter(*m_device, make_block("module", "stripe"), board);
  SBD_NODE* const later = enter(*m_device, make_assignment("later", make_number(7)), stripe);
  symbol_of(stripe)->parent = board;
  symbol_of(later)->parent = stripe;
  EXPECT_TRUE(m_reader->read_dword_parameter(nullptr, "later", nullptr, nullptr));
}

TEST_F(DEVICE_READER, RequirementCodesAreNumbered) {
  using READER = SBD_VELDRAN_PARAMETER_READER;
  EXPECT_EQ(static_cast<int>(READER::RQ_OPTIONAL), 0);
  EXPECT_EQ(static_cast<int>(READER::RQ_ALWAYS), 1);
  EXPECT_EQ(static_cast<int>(READER::RQ_BY_RULE), 2);
}

}  // namespace
