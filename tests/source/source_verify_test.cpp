// What can't be saved, and why.
#include <cstdio>
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

TEST_F(DOCUMENT_VERIFY, BrokenValues) {
  EXPECT_EQ(fault_of(nullptr), "'d.a': The parameter has no value.");
  EXPECT_EQ(fault_of(make_list({make_number(1), nullptr})), "'d.a': A list has an empty element.");
  EXPECT_EQ(fault_of(make_number(1, static_cast<SBD_PARA_VALUE::QUANTITY_UNIT>(99))),
            "'d.a': The value's unit is unknown.");
  EXPECT_EQ(fault_of(make_string("")),
            "'d.a': The text '' is neither an identifier nor in quotes.");
  SBD_PARA_VALUE* const no_list = make_bool(true);
  no_list->type = SBD_PARA_VALUE::VT_LIST;
  no_list->list = nullptr;
  EXPECT_EQ(fault_of(no_list), "'d.a': A list must have at least two elements.");
  SBD_PARA_VALUE* const no_text = make_bool(true);
  no_text->type = SBD_PARA_VALUE::VT_STRING;
  no_text->text = nullptr;
  EXPECT_EQ(fault_of(no_text), "'d.a': The text '' is neither an identifier nor in quotes.");
  SBD_PARA_VALUE* const flag = make_bool(true);
  flag->flag = 2;
  EXPECT_EQ(fault_of(flag), "'d.a': A Boolean must be 1 or 0.");
  SBD_PARA_VALUE* const flag_with_unit = make_bool(true);
  flag_with_unit->unit = SBD_PARA_VALUE::QU_KB;
  EXPECT_EQ(fault_of(flag_with_unit), "'d.a': Only a number can have a unit.");
  EXPECT_EQ(fault_of(make_number(1, SBD_PARA_VALUE::QU_NONE,
                                 static_cast<SBD_PARA_VALUE::VALUE_TYPE>(99))),
            "'d.a': The value's kind is unknown.");
}

// A document with one more node, which is freed with it.
std::string fault_with(SBD_NODE* node, const char* parent) {
  MESSAGE_RECORDER messages;
  const auto document = document_of("device d { a = 1; }");
  SBD_NODE* const scope = document->get_ref_object(parent, nullptr);
  SBD_SYMBOL* const symbol = symbol_of(node);
  if (symbol != nullptr) {
    symbol->parent = scope != nullptr ? scope : node;
    if (symbol->name != nullptr) document->add_symbol(symbol);
  }
  document->add_node(node, scope);
  return document_fault(*document);
}

TEST_F(DOCUMENT_VERIFY, BrokenNodes) {
  SBD_NODE* const block = make_block("bus", "b");
  block->block->members = make_comment("# c\n");
  EXPECT_EQ(fault_with(block, nullptr), "'b': A block of type 'bus' can't stand at top level.");
  EXPECT_EQ(fault_with(make_assignment("x", make_number(1)), nullptr),
            "'x': A statement can't stand at top level.");
  for (const char* const name : {"", "1a", "a b", "a-b", "[0]"}) {
    EXPECT_NE(fault_with(make_assignment(name, make_number(1)), "d").find("The name is not well"),
              std::string::npos)
        << name;
  }
  SBD_NODE* const unknown = make_block("bus", "b");
  unknown->block->block_type = SBD_BLOCK::BT_MODULE;
  EXPECT_EQ(fault_with(unknown, "d"), "'d.b': The block's type is unknown.");
  EXPECT_EQ(fault_with(make_block("box", "b"), "d"), "'d.b': The block's type is unknown.");
  SBD_NODE* const untyped = make_block("bus", "b");
  sbd_free_text(untyped->block->type);
  untyped->block->type = nullptr;
  EXPECT_EQ(fault_with(untyped, "d"), "'d.b': The block's type is unknown.");
}

TEST_F(DOCUMENT_VERIFY, NodesWithoutAName) {
  MESSAGE_RECORDER messages;
  const auto document = document_of("device d { a = 1; }");
  SBD_STATEMENT* const statement = document->get_statement("d", "a");
  SBD_SYMBOL* const symbol = statement->name;
  statement->name = nullptr;
  EXPECT_EQ(document_fault(*document), "Something has no name.");
  statement->name = symbol;
  char* const name = symbol->name;
  symbol->name = nullptr;
  EXPECT_EQ(document_fault(*document), "Something has no name.");
  symbol->name = name;
}

TEST_F(DOCUMENT_VERIFY, BrokenReferencesAndAttributes) {
  const auto refused = [](const char* name) {
    return fault_with(make_reference("r", {name}), "d");
  };
  EXPECT_EQ(refused(""), "'d.r': The reference '' is not a name.");
  EXPECT_EQ(refused("."), "'d.r': The reference '.' names nothing.");
  EXPECT_EQ(refused("1.a"), "'d.r': The reference '1.a' is not a name.");
  EXPECT_EQ(refused("d.a["), "'d.r': The reference 'd.a[' is not a name.");
  EXPECT_EQ(refused("d.a[x]"), "'d.r': The reference 'd.a[x]' is not a name.");
  EXPECT_EQ(refused("d.a[1]"), "'d.r': The reference 'd.a[1]' names nothing.");
  EXPECT_EQ(refused(".b"), "'d.r': The reference '.b' names nothing.");
  SBD_NODE* const nameless = make_reference("r", {"x"});
  sbd_free_text(nameless->statement->reference->name);
  nameless->statement->reference->name = nullptr;
  EXPECT_EQ(fault_with(nameless, "d"), "'d.r': The reference '' is not a name.");
  SBD_NODE* const keyless =
      make_assignment("k", make_number(1), make_attributes({{"key", nullptr}}));
  sbd_free_text(keyless->statement->attributes->attr_key);
  keyless->statement->attributes->attr_key = nullptr;
  EXPECT_EQ(fault_with(keyless, "d"), "'d.k': The attribute's key '' is not an identifier.");
}

TEST_F(DOCUMENT_VERIFY, CommentsAreWholeLines) {
  for (const char* const comment : {"", "#", "no comment\n"}) {
    EXPECT_EQ(fault_with(make_comment(comment), nullptr), "A comment must begin with '#'.");
  }
  for (const char* const comment : {"# no end", "# two\nlines\n"}) {
    EXPECT_EQ(fault_with(make_comment(comment), nullptr),
              "A comment must be one line with its line end.");
    EXPECT_EQ(fault_with(make_assignment("x", make_number(1), nullptr, comment), "d"),
              "'d.x': A comment must be one line with its line end.");
  }
  SBD_NODE* const bare = make_comment("# c\n");
  sbd_free_text(bare->comment);
  bare->comment = nullptr;
  EXPECT_EQ(fault_with(bare, nullptr), "A comment must begin with '#'.");
}

TEST_F(DOCUMENT_VERIFY, WhatCanBeExpressedIsSaved) {
  const auto document = document_of(
      "# top\ndevice d { # in\n a = 1.5; b = -0.25 [k, l .v[1].w]; c = \"q\"; # behind\n r <d.a>; "
      "}\n");
  SBD_STRING why;
  const std::string path = testing::TempDir() + "/whole.sbd";
  EXPECT_TRUE(sbd_save_document(*document, path.c_str(), why)) << why;
  SBD_FILE_PARSER again;
  EXPECT_TRUE(again.read(path.c_str()));
  EXPECT_EQ(again.get_para_value("d", "b")->number, -0.25);
  (void)std::remove(path.c_str());
}

// ---- Trees that were changed by hand, and no longer are what the text says
// -----------------------

class CHANGED_TREE : public SOURCE_FIXTURE {
 protected:
  void SetUp() override {
    read(
        "device d { a = 1K; s = word; b = true; l = {1, {2, 3}}; k = 1 [one .v, two];  # c\n"
        "  r < d.a, d.b >; module m { x = 1; y = 2; } }\n");
  }
  SBD_PARA_VALUE& value(const char* name) const {
    return *source.document().get_para_value("d", name);
  }
  SBD_STATEMENT& statement(const char* name) const {
    return *source.document().get_statement("d", name);
  }
  template <class T>
  void expect_noticed(T& field, T other, const char* where) {
    const T before = field;
    field = other;
    EXPECT_EQ(fault(),
              std::string("The text does not read back as it was meant, at '") + where + "'.");
    field = before;
    EXPECT_EQ(fault(), "");
  }
};

TEST_F(CHANGED_TREE, Values) {
  expect_noticed(value("a").number, 2.0, "d.a");
  expect_noticed(value("a").unit, SBD_PARA_VALUE::QU_MB, "d.a");
  expect_noticed(value("a").type, SBD_PARA_VALUE::VT_HEXAL, "d.a");
  expect_noticed(value("b").flag, std::uint32_t{0}, "d.b");
  char other[] = "other";
  expect_noticed(value("s").text, static_cast<char*>(other), "d.s");
  expect_noticed(value("s").text, static_cast<char*>(nullptr), "d.s");
  expect_noticed((*value("l").list)[0]->number, 7.0, "d.l");
  expect_noticed((*(*value("l").list)[1]->list)[1]->number, 7.0, "d.l");
  SBD_VALUE_LIST* const inner = (*value("l").list)[1]->list;
  expect_noticed(value("l").list, inner, "d.l");
}

TEST_F(CHANGED_TREE, Statements) {
  char other[] = "other";
  char comment[] = "# d\n";
  expect_noticed(statement("k").attributes->attr_key, static_cast<char*>(other), "d.k");
  expect_noticed(statement("k").attributes->attr_value, static_cast<char*>(other), "d.k");
  expect_noticed(statement("k").attributes->next, static_cast<SBD_PARA_ATTR*>(nullptr), "d.k");
  expect_noticed(statement("k").attributes, static_cast<SBD_PARA_ATTR*>(nullptr), "d.k");
  expect_noticed(statement("k").comment, static_cast<char*>(comment), "d.k");
  expect_noticed(statement("k").comment, static_cast<char*>(nullptr), "d.k");
  expect_noticed(statement("r").reference->next, static_cast<SBD_PARA_REF*>(nullptr), "d.r");
  char key[] = "more";
  SBD_PARA_ATTR more_attributes;
  more_attributes.attr_key = key;
  expect_noticed(statement("k").attributes->next->next, &more_attributes, "d.k");
  char name[] = "d.a";
  SBD_PARA_REF more_references;
  more_references.name = name;
  more_references.target = source.document().get_ref_object("d.a", nullptr);
  expect_noticed(statement("r").reference->next->next, &more_references, "d.r");
  char same_object[] = ".a";
  expect_noticed(statement("r").reference->name, static_cast<char*>(same_object), "d.r");
}

TEST_F(CHANGED_TREE, Nodes) {
  const SBD_FILE_PARSER& document = source.document();
  SBD_NODE* const x = document.get_ref_object("d.m.x", nullptr);
  SBD_NODE* const module = document.get_ref_object("d.m", nullptr);
  expect_noticed(x->next, static_cast<SBD_NODE*>(nullptr), "d.m.x");
  expect_noticed(symbol_of(x)->name[0], 'X', "d.m.X");
  char type[] = "MODULE";
  expect_noticed(module->block->type, static_cast<char*>(type), "d.m");
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
