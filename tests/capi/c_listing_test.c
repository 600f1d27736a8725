#include <stdlib.h>
#include <string.h>

#include "tests/capi/c_test.h"

static const char k_text[] =
    "# a board\n"
    "device board {\n"
    "  family = veldran_arm;\n"
    "  module stripe {\n"
    "    size = 64K [display board.label, readonly];\n"
    "    source <board.family, .size>;\n"
    "    Parameters clocks { main = 50MHz; modes = {1, \"s\", {true, {2.5, 3}}}; }\n"
    "  }\n"
    "}\n";

static void expect_names(const sbdc_document* document, const char* scope, unsigned kinds,
                         const char* expected) {
  char names[1000] = "";
  sbdc_listing* listing = NULL;
  size_t i = 0;
  EXPECT_STATUS(sbdc_list(document, scope, kinds, &listing), SBDC_OK);
  for (i = 0; i < sbdc_listing_size(listing); i++) {
    strncat(names, sbdc_listing_item(listing, i)->name, sizeof names - strlen(names) - 2);
    strcat(names, " ");
  }
  EXPECT(sbdc_listing_item(listing, i) == NULL);
  EXPECT_TEXT(names, expected);
  sbdc_listing_free(listing);
}

static const sbdc_item* find(const sbdc_document* document, const char* name,
                             sbdc_listing** listing) {
  EXPECT_STATUS(sbdc_find(document, name, listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(*listing), 1);
  return sbdc_listing_item(*listing, 0);
}

static void find_block(const sbdc_document* document) {
  sbdc_listing* listing = NULL;
  const sbdc_item* const item = find(document, "board.stripe.CLOCKS", &listing);
  EXPECT_TEXT(item->name, "board.stripe.clocks");
  EXPECT_TEXT(item->type, "Parameters");
  EXPECT(item->kind == SBDC_BLOCK);
  EXPECT_NUMBER(item->depth, 2);
  EXPECT(item->value.kind == SBDC_NO_VALUE);
  EXPECT_NUMBER(item->position.line, 7);
  EXPECT_NUMBER(item->position.column, 5);
  EXPECT_NUMBER(item->name_position.column, 16);
  EXPECT_NUMBER(item->name_position.length, 6);
  EXPECT_NUMBER(item->attribute_count, 0);
  sbdc_listing_free(listing);
}

static void find_parameter(const sbdc_document* document) {
  sbdc_listing* listing = NULL;
  const sbdc_attribute* attribute = NULL;
  const sbdc_item* const item = find(document, "board.stripe.size", &listing);
  EXPECT(item->kind == SBDC_PARAMETER);
  EXPECT_TEXT(item->type, "");
  EXPECT(item->value.kind == SBDC_DECIMAL);
  EXPECT(item->value.unit == SBDC_K);
  EXPECT_NUMBER(item->value.number, 65536);
  EXPECT_NUMBER(item->value.unscaled, 64);
  EXPECT_TEXT(item->value.text, "");
  EXPECT_NUMBER(item->value.position.line, 5);
  EXPECT_NUMBER(item->value.position.column, 12);
  EXPECT_NUMBER(item->value.position.length, 3);
  EXPECT_NUMBER(item->position.length, strlen("size = 64K [display board.label, readonly];"));

  EXPECT_NUMBER(item->attribute_count, 2);
  attribute = sbdc_listing_attribute(listing, item->first_attribute);
  EXPECT_TEXT(attribute->key, "display");
  EXPECT_TEXT(attribute->value, "board.label");
  EXPECT_NUMBER(attribute->position.column, 17);
  attribute = sbdc_listing_attribute(listing, item->first_attribute + 1);
  EXPECT_TEXT(attribute->key, "readonly");
  EXPECT(attribute->value == NULL);
  EXPECT(sbdc_listing_attribute(listing, item->first_attribute + 2) == NULL);
  sbdc_listing_free(listing);
}

static void find_references(const sbdc_document* document) {
  sbdc_listing* listing = NULL;
  const sbdc_value* element = NULL;
  const sbdc_item* const item = find(document, "board.stripe.source", &listing);
  EXPECT(item->kind == SBDC_REFERENCE_STATEMENT);
  EXPECT(item->value.kind == SBDC_REFERENCES);
  EXPECT_NUMBER(item->value.element_count, 2);
  element = sbdc_listing_element(listing, item->value.first_element + 1);
  EXPECT(element->kind == SBDC_REFERENCE);
  EXPECT_TEXT(element->text, ".size");
  EXPECT_TEXT(element->target, "board.stripe.size");
  EXPECT_NUMBER(element->position.line, 6);
  EXPECT_NUMBER(element->position.column, 27);
  EXPECT(sbdc_listing_element(listing, item->value.first_element + 2) == NULL);
  sbdc_listing_free(listing);
}

/* The picture stays when the document changes, and when it is gone. */
static void outlive_document(void) {
  sbdc_document* const document = make_document(k_text);
  sbdc_listing* listing = NULL;
  EXPECT_STATUS(sbdc_find(document, "board.family", &listing), SBDC_OK);
  EXPECT_STATUS(sbdc_set_value(document, "board.family", "veldran_mips"), SBDC_OK);
  EXPECT_TEXT(sbdc_listing_item(listing, 0)->value.text, "veldran_arm");
  sbdc_document_free(document);
  EXPECT_TEXT(sbdc_listing_item(listing, 0)->name, "board.family");
  EXPECT_TEXT(sbdc_listing_item(listing, 0)->value.text, "veldran_arm");
  sbdc_listing_free(listing);
}

/* Edited things are listed as they are now. */
static void list_edited(void) {
  sbdc_document* const document = make_document("device d { a = 1; }");
  EXPECT_STATUS(sbdc_set_value(document, "d.a", "0x20K"), SBDC_OK);
  EXPECT_STATUS(sbdc_set_value(document, "d.b", "true"), SBDC_OK);
  {
    sbdc_listing* listing = NULL;
    const sbdc_item* item = find(document, "d.a", &listing);
    EXPECT(item->value.kind == SBDC_HEXADECIMAL);
    EXPECT_NUMBER(item->value.number, 32768);
    sbdc_listing_free(listing);
    item = find(document, "d.b", &listing);
    EXPECT(item->value.kind == SBDC_BOOLEAN);
    EXPECT_NUMBER(item->value.number, 1);
    EXPECT_NUMBER(item->position.line, 0);
    sbdc_listing_free(listing);
  }
  sbdc_document_free(document);
}

static void view_at_once(const sbdc_document* document) {
  sbdc_listing* listing = NULL;
  sbdc_listing_view view;
  const char* name = NULL;
  size_t i = 0;
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_BLOCK | SBDC_PARAMETER, &listing), SBDC_OK);
  EXPECT_STATUS(sbdc_listing_get_view(listing, &view), SBDC_OK);
  EXPECT_NUMBER(view.item_count, 7);
  EXPECT_NUMBER(view.item_size, sizeof(sbdc_item));
  name = view.names;
  for (i = 0; i < view.item_count; i++) {
    EXPECT(&view.items[i] == sbdc_listing_item(listing, i));
    EXPECT_TEXT(name, view.items[i].name);
    name += strlen(name) + 1;
  }
  EXPECT_NUMBER(name - view.names, view.name_length);
  sbdc_listing_free(listing);
}

static void list_nothing(void) {
  sbdc_document* document = NULL;
  sbdc_listing* listing = NULL;
  EXPECT_STATUS(sbdc_document_new(&document), SBDC_OK);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_BLOCK, &listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(listing), 0);
  sbdc_listing_free(listing);
  sbdc_document_free(document);
}

void test_listings(void) {
  const unsigned all = SBDC_BLOCK | SBDC_PARAMETER | SBDC_REFERENCE_STATEMENT;
  sbdc_document* const document = make_document(k_text);
  sbdc_listing* listing = NULL;
  expect_names(document, NULL, SBDC_BLOCK, "board board.stripe board.stripe.clocks ");
  expect_names(document, "", SBDC_PARAMETER,
               "board.family board.stripe.size board.stripe.clocks.main "
               "board.stripe.clocks.modes ");
  expect_names(document, "Board.Stripe", all,
               "board.stripe.size board.stripe.source board.stripe.clocks "
               "board.stripe.clocks.main board.stripe.clocks.modes ");
  EXPECT_STATUS(sbdc_list(document, "board.nothing", all, &listing), SBDC_NOT_FOUND);
  EXPECT_STATUS(sbdc_list(document, "board.family", all, &listing), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_find(document, "nothing", &listing), SBDC_NOT_FOUND);
  EXPECT(listing == NULL);
  find_block(document);
  find_parameter(document);
  find_references(document);
  view_at_once(document);
  sbdc_document_free(document);
  outlive_document();
  list_edited();
  list_nothing();
}

/* ---- Walks ---- */

static void expect_part(sbdc_walk* walk, size_t most, const char* expected) {
  char names[200] = "";
  sbdc_listing* listing = NULL;
  size_t i = 0;
  EXPECT_STATUS(sbdc_walk_next(walk, most, &listing), SBDC_OK);
  for (i = 0; i < sbdc_listing_size(listing); i++) {
    strncat(names, sbdc_listing_item(listing, i)->name, sizeof names - strlen(names) - 2);
    strcat(names, " ");
  }
  EXPECT_TEXT(names, expected);
  sbdc_listing_free(listing);
}

static void expect_end(sbdc_walk* walk, sbdc_status expected) {
  sbdc_listing* listing = NULL;
  EXPECT_STATUS(sbdc_walk_next(walk, 1, &listing), expected);
  EXPECT(listing == NULL);
}

static void walk_in_parts(const sbdc_document* document) {
  sbdc_walk* walk = NULL;
  EXPECT_STATUS(sbdc_walk_new(document, NULL, SBDC_BLOCK | SBDC_PARAMETER, &walk), SBDC_OK);
  expect_part(walk, 2, "board board.family ");
  expect_part(walk, 1, "board.stripe ");
  expect_part(walk, 3, "board.stripe.size board.stripe.clocks board.stripe.clocks.main ");
  expect_part(walk, 100, "board.stripe.clocks.modes ");
  expect_end(walk, SBDC_NOT_FOUND);
  expect_end(walk, SBDC_NOT_FOUND);
  sbdc_walk_free(walk);

  EXPECT_STATUS(sbdc_walk_new(document, "board.STRIPE.clocks", SBDC_PARAMETER, &walk), SBDC_OK);
  expect_part(walk, 1, "board.stripe.clocks.main ");
  expect_part(walk, 1, "board.stripe.clocks.modes ");
  expect_end(walk, SBDC_NOT_FOUND);
  sbdc_walk_free(walk);
}

/* Part by part, the items are those of the whole listing. */
static void walk_as_listed(const sbdc_document* document) {
  const unsigned all = SBDC_BLOCK | SBDC_PARAMETER | SBDC_REFERENCE_STATEMENT;
  sbdc_listing* whole = NULL;
  sbdc_walk* walk = NULL;
  size_t i = 0;
  EXPECT_STATUS(sbdc_list(document, NULL, all, &whole), SBDC_OK);
  EXPECT_STATUS(sbdc_walk_new(document, NULL, all, &walk), SBDC_OK);
  for (i = 0; i < sbdc_listing_size(whole); i++) {
    const sbdc_item* const expected = sbdc_listing_item(whole, i);
    sbdc_listing* part = NULL;
    const sbdc_item* item = NULL;
    EXPECT_STATUS(sbdc_walk_next(walk, 1, &part), SBDC_OK);
    item = sbdc_listing_item(part, 0);
    EXPECT_TEXT(item->name, expected->name);
    EXPECT_TEXT(item->type, expected->type);
    EXPECT_NUMBER(item->depth, expected->depth);
    EXPECT(memcmp(&item->position, &expected->position, sizeof item->position) == 0);
    EXPECT(memcmp(&item->name_position, &expected->name_position, sizeof item->position) == 0);
    EXPECT(memcmp(&item->value.position, &expected->value.position, sizeof item->position) == 0);
    EXPECT(item->value.kind == expected->value.kind);
    EXPECT_NUMBER(item->value.element_count, expected->value.element_count);
    EXPECT_NUMBER(item->attribute_count, expected->attribute_count);
    sbdc_listing_free(part);
  }
  expect_end(walk, SBDC_NOT_FOUND);
  sbdc_walk_free(walk);
  sbdc_listing_free(whole);
}

/* A changed document ends the walk; what it gave stays. */
static void walk_in_vain(void) {
  sbdc_document* const document = make_document(k_text);
  sbdc_walk* walk = NULL;
  sbdc_listing* part = NULL;
  EXPECT_STATUS(sbdc_walk_new(document, "nothing", SBDC_BLOCK, &walk), SBDC_NOT_FOUND);
  EXPECT_STATUS(sbdc_walk_new(document, "board.family", SBDC_BLOCK, &walk), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_walk_new(document, NULL, 0, &walk), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_walk_new(document, NULL, 8, &walk), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_walk_new(NULL, NULL, SBDC_BLOCK, &walk), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_walk_new(document, NULL, SBDC_BLOCK, NULL), SBDC_MISUSE);
  EXPECT(walk == NULL);
  EXPECT_STATUS(sbdc_walk_next(NULL, 1, &part), SBDC_MISUSE);

  EXPECT_STATUS(sbdc_walk_new(document, NULL, SBDC_PARAMETER, &walk), SBDC_OK);
  EXPECT_STATUS(sbdc_walk_next(walk, 0, &part), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_walk_next(walk, 1, NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_walk_next(walk, 1, &part), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_parameter(document, "board.stripe.clocks.main"), SBDC_OK);
  expect_end(walk, SBDC_MISUSE);
  EXPECT_TEXT(sbdc_listing_item(part, 0)->name, "board.family");
  sbdc_walk_free(walk);

  EXPECT_STATUS(sbdc_walk_new(document, NULL, SBDC_PARAMETER, &walk), SBDC_OK);
  EXPECT_STATUS(sbdc_read_text(document, "device d { a = 1; }", 19, "d.sbd"), SBDC_OK);
  expect_end(walk, SBDC_MISUSE);
  sbdc_document_free(document);
  sbdc_walk_free(walk);
  sbdc_walk_free(NULL);
  sbdc_listing_free(part);
}

/* Positions are right wherever the lines begin, and for what does not stand in file order. */
static void walk_odd_places(void) {
  static const char k_odd[] =
      "device d\r\n{ a = 1 ; b\n= \"x;\n\" ; c = {1,\n 2}[k d.a]; # d\n"
      "module m { e = true; } }";
  sbdc_document* const document = make_document(k_odd);
  sbdc_listing* listing = NULL;
  size_t i = 0;
  static const struct {
    const char* name;
    uint32_t line, column, offset, length, value_line, value_column;
  } k_expected[] = {
      {"d.b", 2, 11, 20, 11, 3, 3},
      {"d.c", 4, 5, 32, 19, 4, 9},
      {"d.m.e", 6, 12, 67, 9, 6, 16},
      {"d.a", 0, 0, 0, 0, 0, 0},
  };
  EXPECT_STATUS(sbdc_remove_references(document, "d.a"), SBDC_OK);
  EXPECT_STATUS(sbdc_set_attributes(document, "d.c", NULL, NULL, 0), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_parameter(document, "d.a"), SBDC_OK);
  EXPECT_STATUS(sbdc_add_value(document, "d.a", "5", SBDC_AT_END, NULL), SBDC_OK);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_PARAMETER, &listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(listing), 4);
  for (i = 0; i < sbdc_listing_size(listing); i++) {
    const sbdc_item* const item = sbdc_listing_item(listing, i);
    EXPECT_TEXT(item->name, k_expected[i].name);
    EXPECT_NUMBER(item->position.line, k_expected[i].line);
    EXPECT_NUMBER(item->position.column, k_expected[i].column);
    EXPECT_NUMBER(item->position.offset, k_expected[i].offset);
    EXPECT_NUMBER(item->position.length, k_expected[i].length);
    EXPECT_NUMBER(item->value.position.line, k_expected[i].value_line);
    EXPECT_NUMBER(item->value.position.column, k_expected[i].value_column);
  }
  sbdc_listing_free(listing);
  sbdc_document_free(document);
}

/* The text as it was read has the old names, which the new ones begin like. */
static void walk_renamed(void) {
  sbdc_document* const document =
      make_document("device d { abc = 1; r <d.abc>; module\n  mno { x = 1; } }");
  sbdc_listing* listing = NULL;
  const sbdc_item* item = find(document, "d.mno", &listing);
  EXPECT_NUMBER(item->name_position.line, 2);
  EXPECT_NUMBER(item->name_position.column, 3);
  EXPECT_NUMBER(item->name_position.length, 3);
  EXPECT_NUMBER(item->position.line, 1);
  sbdc_listing_free(listing);
  EXPECT_STATUS(sbdc_rename(document, "d.abc", "ab", 1), SBDC_OK);
  EXPECT_STATUS(sbdc_rename(document, "d.mno", "mn", 1), SBDC_OK);
  item = find(document, "d.ab", &listing);
  EXPECT_TEXT(item->name, "d.ab");
  EXPECT_NUMBER(item->name_position.line, 0);
  EXPECT_NUMBER(item->position.line, 1);
  sbdc_listing_free(listing);
  item = find(document, "d.mn", &listing);
  EXPECT_NUMBER(item->name_position.line, 0);
  sbdc_listing_free(listing);
  sbdc_document_free(document);
}

void test_walks(void) {
  sbdc_document* const document = make_document(k_text);
  walk_in_parts(document);
  walk_as_listed(document);
  sbdc_document_free(document);
  walk_in_vain();
  walk_odd_places();
  walk_renamed();
}

/* ---- Lists in lists ---- */

static void find_nested_list(void) {
  sbdc_document* const document =
      make_document("device d { l = {1, \"s\", {true, {2.5, x}}, 0b11K}; }");
  sbdc_listing* listing = NULL;
  const sbdc_value* value = &find(document, "d.l", &listing)->value;
  const sbdc_value* inner = NULL;
  uint32_t first = value->first_element;
  EXPECT(value->kind == SBDC_LIST);
  EXPECT_NUMBER(value->element_count, 4);
  EXPECT_NUMBER(sbdc_listing_element(listing, first)->number, 1);
  EXPECT(sbdc_listing_element(listing, first + 1)->kind == SBDC_STRING);
  EXPECT_TEXT(sbdc_listing_element(listing, first + 1)->text, "s");
  EXPECT(sbdc_listing_element(listing, first + 3)->kind == SBDC_BINARY);
  EXPECT_NUMBER(sbdc_listing_element(listing, first + 3)->number, 3072);
  inner = sbdc_listing_element(listing, first + 2);
  EXPECT(inner->kind == SBDC_LIST);
  EXPECT_NUMBER(inner->element_count, 2);
  EXPECT(sbdc_listing_element(listing, inner->first_element)->kind == SBDC_BOOLEAN);
  inner = sbdc_listing_element(listing, inner->first_element + 1);
  EXPECT(inner->kind == SBDC_LIST);
  EXPECT(sbdc_listing_element(listing, inner->first_element)->kind == SBDC_FLOAT);
  EXPECT_NUMBER(sbdc_listing_element(listing, inner->first_element)->number, 2.5);
  EXPECT(sbdc_listing_element(listing, inner->first_element + 1)->kind == SBDC_WORD);
  EXPECT_TEXT(sbdc_listing_element(listing, inner->first_element + 1)->text, "x");
  sbdc_listing_free(listing);
  sbdc_document_free(document);
}

/* Neither depth of blocks nor of lists may eat up the stack. */
static void list_deep_nesting(void) {
  enum { k_depth = 3000 };
  static const char k_open[] = "module m{";
  char* const text = calloc(1, 64 + k_depth * (sizeof k_open + 10));
  sbdc_document* document = NULL;
  sbdc_listing* listing = NULL;
  const sbdc_value* value = NULL;
  size_t depth = 0;
  int i = 0;
  char* end = text;
  EXPECT(text != NULL);
  if (text == NULL) return;
  end += strlen(strcpy(end, "device d{"));
  for (i = 0; i < k_depth; i++) end += strlen(strcpy(end, k_open));
  end += strlen(strcpy(end, "p="));
  for (i = 0; i < k_depth; i++) end += strlen(strcpy(end, "{1,"));
  end += strlen(strcpy(end, "2"));
  for (i = 0; i < k_depth; i++) end += strlen(strcpy(end, "}"));
  end += strlen(strcpy(end, ";"));
  for (i = 0; i < k_depth; i++) end += strlen(strcpy(end, "}"));
  strcpy(end, "}");
  document = make_document(text);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_BLOCK | SBDC_PARAMETER, &listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(listing), k_depth + 2);
  EXPECT_NUMBER(sbdc_listing_item(listing, k_depth + 1)->depth, k_depth + 1);
  value = &sbdc_listing_item(listing, k_depth + 1)->value;
  while (value->kind == SBDC_LIST) {
    value = sbdc_listing_element(listing, value->first_element + 1);
    depth++;
  }
  EXPECT_NUMBER(depth, k_depth);
  EXPECT_NUMBER(value->number, 2);
  sbdc_listing_free(listing);
  sbdc_document_free(document);
  free(text);
}

/* Values that are so long that their records can't tell have their places nevertheless. */
static void list_long_values(void) {
  enum { k_long = 70000 };
  char* const text = calloc(1, 3 * k_long);
  sbdc_document* document = NULL;
  sbdc_listing* listing = NULL;
  const sbdc_item* item = NULL;
  char* end = text;
  EXPECT(text != NULL);
  if (text == NULL) return;
  end += strlen(strcpy(end, "device d {\n s = \""));
  memset(end, 's', k_long);
  end += strlen(end);
  end += strlen(strcpy(end, "\";\n list = {1,"));
  memset(end, ' ', k_long);
  end += strlen(end);
  end += strlen(strcpy(end, "2}; x = 3;\n}"));
  document = make_document(text);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_PARAMETER, &listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(listing), 3);
  item = sbdc_listing_item(listing, 0);
  EXPECT_NUMBER(item->value.position.length, k_long + 2);
  EXPECT_NUMBER(item->position.length, k_long + 2 + strlen("s = ;"));
  item = sbdc_listing_item(listing, 1);
  EXPECT_NUMBER(item->value.position.line, 3);
  EXPECT_NUMBER(item->value.position.column, 9);
  EXPECT_NUMBER(item->value.position.length, k_long + strlen("{1,2}"));
  EXPECT_NUMBER(item->position.length, k_long + strlen("list = {1,2};"));
  item = sbdc_listing_item(listing, 2);
  EXPECT_NUMBER(item->position.length, strlen("x = 3;"));
  EXPECT_NUMBER(item->value.position.column, k_long + 20);
  sbdc_listing_free(listing);
  sbdc_document_free(document);
  free(text);
}

/* Deep lists on one line, each of which ends behind the one in it. */
static void list_deep_list_in_a_line(void) {
  enum { k_depth = 200000 };
  char* const text = calloc(1, 64 + 5 * k_depth);
  sbdc_document* document = NULL;
  sbdc_listing* listing = NULL;
  const sbdc_value* value = NULL;
  size_t depth = 0;
  char* end = text;
  EXPECT(text != NULL);
  if (text == NULL) return;
  end += strlen(strcpy(end, "device d{p="));
  for (depth = 0; depth < k_depth; depth++) end = strcpy(end, "{1,") + 3;
  *end++ = '2';
  memset(end, '}', k_depth);
  strcpy(end + k_depth, ";}");
  document = make_document(text);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_PARAMETER, &listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(listing), 1);
  value = &sbdc_listing_item(listing, 0)->value;
  for (depth = 0; value->kind == SBDC_LIST; depth++) {
    const size_t lists_left = k_depth - depth;
    const int is_right = value->position.line == 1 && value->position.offset == 11 + 3 * depth &&
                         value->position.length == 4 * lists_left + 1;
    EXPECT(is_right);
    if (!is_right) break;
    value = sbdc_listing_element(listing, value->first_element + 1);
  }
  EXPECT_NUMBER(depth, k_depth);
  sbdc_listing_free(listing);
  sbdc_document_free(document);
  free(text);
}

/* More references on one line than could each be looked for from its beginning, or to its end. */
static void list_many_references_in_a_line(void) {
  enum { k_count = 200000 };
  static const char k_name[] = ",d.aa";
  const size_t size = sizeof k_name - 1;
  char* const text = calloc(1, 64 + k_count * size);
  sbdc_document* document = NULL;
  sbdc_listing* listing = NULL;
  const sbdc_value* value = NULL;
  size_t i = 0;
  char* end = text;
  EXPECT(text != NULL);
  if (text == NULL) return;
  end += strlen(strcpy(end, "device d{aa=1;\nr<d.aa"));
  for (i = 1; i < k_count; i++) {
    memcpy(end, k_name, size);
    end += size;
  }
  strcpy(end, ">;}");
  document = make_document(text);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_REFERENCE_STATEMENT, &listing), SBDC_OK);
  EXPECT_NUMBER(sbdc_listing_size(listing), 1);
  value = &sbdc_listing_item(listing, 0)->value;
  EXPECT_NUMBER(value->element_count, k_count);
  for (i = 0; i < k_count; i++) {
    const sbdc_value* const element = sbdc_listing_element(listing, value->first_element + i);
    const int is_right = element->position.line == 2 && element->position.column == 3 + size * i &&
                         element->position.length == size - 1;
    EXPECT(is_right);
    if (!is_right) break;
  }
  sbdc_listing_free(listing);
  sbdc_document_free(document);
  free(text);
}

void test_nested_lists(void) {
  find_nested_list();
  list_deep_nesting();
  list_long_values();
  list_deep_list_in_a_line();
  list_many_references_in_a_line();
}
