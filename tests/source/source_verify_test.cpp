// What can't be saved, and why.
#include <limits>

#include "tests/source/source_fixture.h"

namespace {

class SOURCE_VERIFY : public SOURCE_FIXTURE {
 protected:
  void SetUp() override { read("device d { a = 1; b = x; module m { y = 1; r < d.a >; } }"); }

  // Neither way of saving takes it, and the file is not made.
  void expect_fault(const std::string& why) {
    EXPECT_EQ(fault(), why);
    const std::string path = testing::TempDir() + "/never.sbd";
    for (const bool is_canonical : {false, true}) {
      messages.forget();
      EXPECT_FALSE(is_canonical ? source.save_canonical(path.c_str()) : source.save(path.c_str()));
      EXPECT_EQ(messages.texts(),
                std::vector<std::string>({
                    file_error_text(path),
                    "System Build Descriptor File error: Cannot save file: '" + path + "'. " + why,
                }));
    }
  }
};

TEST_F(SOURCE_VERIFY, ABlockWithoutMembers) {
  EXPECT_TRUE(source.add_block("bus", "e", "d"));
  expect_fault("'d.e': A block must have members.");
}

TEST_F(SOURCE_VERIFY, Indices) {
  EXPECT_TRUE(source.set_value("d.i[10]", "1"));
  expect_fault("'d.i[10]': An index can't have more than one digit.");
  EXPECT_TRUE(source.rename("d.i[10]", "i[]", true));
  expect_fault("'d.i[]': An index can't be empty.");
  EXPECT_TRUE(source.rename("d.i[]", "i[1][2]", true));
  EXPECT_EQ(fault(), "");
}

TEST_F(SOURCE_VERIFY, BooleanWords) {
  EXPECT_TRUE(source.set_value("d.true", "1"));
  expect_fault("'d.true': A name can't be a Boolean word.");
  EXPECT_TRUE(source.remove_parameter("d.true"));
  EXPECT_TRUE(source.add_block("bus", "False", "d"));
  EXPECT_TRUE(source.set_value("d.False.x", "1"));
  expect_fault("'d.False': A name can't be a Boolean word.");
}

TEST_F(SOURCE_VERIFY, References) {
  EXPECT_TRUE(source.set_references("d.r", {}));
  expect_fault("'d.r': A reference statement must have names.");
  EXPECT_TRUE(source.set_references("d.r", {"d.a"}));
  EXPECT_EQ(fault(), "");
  EXPECT_TRUE(source.rename("d", "d[1]", true));
  EXPECT_TRUE(source.set_references("d[1].r", {"d[1]"}));
  expect_fault("'d[1].r': The reference 'd[1]' is an indexed name without '.'.");
}

TEST_F(SOURCE_VERIFY, ReferencesThatNameNothing) {
  EXPECT_TRUE(source.set_references("d.r", {"d.m.y"}));
  EXPECT_TRUE(source.remove_block("d.m"));
  expect_fault("'d.r': The reference 'd.m.y' names nothing.");
  EXPECT_TRUE(source.add_block("bus", "m", "d"));
  EXPECT_TRUE(source.set_value("d.m.z", "1"));
  EXPECT_TRUE(source.set_references("d.r", {"d.m.z"}));
  EXPECT_EQ(fault(), "");
}

TEST_F(SOURCE_VERIFY, ReferencesThatNameAnotherObject) {
  EXPECT_TRUE(source.rename("d.a", "c", false));
  EXPECT_TRUE(source.set_value("d.a", "2"));
  expect_fault("'d.m.r': The reference 'd.a' names another object than it means.");
}

TEST_F(SOURCE_VERIFY, Attributes) {
  SBD_FILE_PARSER::SBD_PARA_ATTR attribute;
  attribute.attr_key = const_cast<char*>("k");
  attribute.attr_value = const_cast<char*>("v");
  EXPECT_TRUE(source.set_attributes("d.a", &attribute));
  expect_fault("'d.a': The attribute's value 'v' has no '.'.");
  attribute.attr_value = const_cast<char*>("v.]; x = 1");
  EXPECT_TRUE(source.set_attributes("d.a", &attribute));
  expect_fault("'d.a': The attribute's value 'v.]; x = 1' is not a qualified name.");
  attribute.attr_key = const_cast<char*>("no key");
  EXPECT_TRUE(source.set_attributes("d.a", &attribute));
  expect_fault("'d.a': The attribute's key 'no key' is not an identifier.");
  EXPECT_TRUE(source.remove_attributes("d.a"));
  EXPECT_EQ(fault(), "");
  EXPECT_EQ(text(), "device d { a = 1; b = x; module m { y = 1; r < d.a >; } }");
}

TEST_F(SOURCE_VERIFY, NamesDeclaredTwice) {
  EXPECT_TRUE(source.add_block("bus", "A", "d"));
  EXPECT_TRUE(source.set_value("d.A.x", "1"));
  expect_fault("'d.a': The name is declared twice.");
}

TEST_F(SOURCE_VERIFY, BlocksInTheWrongPlace) {
  EXPECT_TRUE(source.add_block("Device", "e", "d"));
  EXPECT_TRUE(source.set_value("d.e.x", "1"));
  expect_fault("'d.e': A block of type 'Device' can't stand inside a block.");
}

// What only a caller of the tree can make.
std::string document_fault(SBD_FILE_PARSER& document) {
  SBD_STRING why;
  const std::string path = testing::TempDir() + "/never.sbd";
  EXPECT_FALSE(sbd_save_document(document, path.c_str(), why));
  return std::string(why);
}

class DOCUMENT_VERIFY : public testing::Test {
 protected:
  std::string fault_of(SBD_PARA_VALUE* value) {
    MESSAGE_RECORDER messages;
    const auto document = document_of("device d { a = 1; }");
    SBD_PARA_VALUE*& slot = document->get_statement("d", "a")->value;
    SBD_PARA_VALUE* const read = slot;
    slot = value;
    const std::string why = document_fault(*document);
    slot = read;
    document->free_para_val(value);
    return why;
  }
};

TEST_F(DOCUMENT_VERIFY, Values) {
  EXPECT_EQ(fault_of(make_list({make_number(1)})),
            "'d.a': A list must have at least two elements.");
  EXPECT_EQ(fault_of(make_list({make_number(1), make_list({})})),
            "'d.a': A list must have at least two elements.");
  EXPECT_EQ(fault_of(make_string("a b")),
            "'d.a': The text 'a b' is neither an identifier nor in quotes.");
  EXPECT_EQ(fault_of(make_string("\"a\"b\"")),
            "'d.a': The text '\"a\"b\"' is neither an identifier nor in quotes.");
  EXPECT_EQ(fault_of(make_string("true")),
            "'d.a': The text 'true' is neither an identifier nor in quotes.");
  EXPECT_EQ(fault_of(make_number(4294967296.0)),
            "'d.a': An integer must be a whole number of 32 bits.");
  EXPECT_EQ(fault_of(make_number(-1)), "'d.a': An integer must be a whole number of 32 bits.");
  EXPECT_EQ(fault_of(make_number(0.1234567, SBD_PARA_VALUE::QU_NONE, SBD_PARA_VALUE::VT_FLOAT)),
            "'d.a': The number 0.1234567 would be written as 0.123457.");
  EXPECT_EQ(fault_of(make_number(std::numeric_limits<double>::infinity(), SBD_PARA_VALUE::QU_NONE,
                                 SBD_PARA_VALUE::VT_FLOAT)),
            "'d.a': A floating number must be finite.");
}

TEST_F(DOCUMENT_VERIFY, Comments) {
  MESSAGE_RECORDER messages;
  const auto document = document_of("device d { a = 1; }");
  document->add_node(make_comment("no comment\n"), nullptr);
  EXPECT_EQ(document_fault(*document), "A comment must begin with '#'.");
}

// Such a number is fine as it is typed.
TEST_F(SOURCE_VERIFY, ManyDecimalsAreRefusedInTheCanonicalLayoutOnly) {
  EXPECT_TRUE(source.set_value("d.a", "1.23456789"));
  EXPECT_EQ(fault(), "");
  const std::string path = testing::TempDir() + "/never.sbd";
  EXPECT_FALSE(source.save_canonical(path.c_str()));
  EXPECT_EQ(messages.texts().back(),
            "System Build Descriptor File error: Cannot save file: '" + path +
                "'. 'd.a': The number 1.23456789 would be written as 1.234568.");
}

TEST_F(SOURCE_VERIFY, BytesThatTheTreeCantHoldStay) {
  std::string text = "device d { a = \"x0y\"; # c0d\n }\n";
  for (char& c : text) c = c == '0' ? '\0' : c;
  ASSERT_TRUE(source.read_text(text.data(), text.size(), TEST_FILE));
  EXPECT_TRUE(source.add_block("device", "e", nullptr));
  EXPECT_TRUE(source.set_value("e.x", "1"));
  EXPECT_EQ(fault(), "");
  EXPECT_EQ(std::string(source.text()).substr(0, text.size()), text);
}

}  // namespace
