#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tests/capi/c_test.h"

static const char k_text[] =
    "device d {\n"
    "    a   = 1;  # first\n"
    "    b = \"text\";\n"
    "    module m { x = 2; }\n"
    "    r <d.m, d.a>;\n"
    "}\n";

static void set_and_add(void) {
  const char* const targets[] = {"d.b"};
  const char* const keys[] = {"display", "readonly"};
  const char* const values[] = {"d.b", NULL};
  sbdc_document* const document = make_document(k_text);
  EXPECT_STATUS(sbdc_set_value(document, "d.a", "0x40K"), SBDC_OK);
  EXPECT_STATUS(sbdc_add_value(document, "d.c", "true", SBDC_BEFORE, "b"), SBDC_OK);
  EXPECT_STATUS(sbdc_add_value(document, "d.m.y", "3", SBDC_AT_END, NULL), SBDC_OK);
  EXPECT_STATUS(sbdc_set_references(document, "d.s", targets, 1, SBDC_BEHIND, "c"), SBDC_OK);
  EXPECT_STATUS(sbdc_set_attributes(document, "d.b", keys, values, 2), SBDC_OK);
  EXPECT_DOCUMENT(document,
                  "device d {\n"
                  "    a   = 0x40K;  # first\n"
                  "    c = true;\n"
                  "    s < d.b >;\n"
                  "    b = \"text\" [display d.b, readonly];\n"
                  "    module m { x = 2; y = 3; }\n"
                  "    r <d.m, d.a>;\n"
                  "}\n");
  EXPECT_STATUS(sbdc_set_attributes(document, "d.b", NULL, NULL, 0), SBDC_OK);
  EXPECT_STATUS(sbdc_verify(document), SBDC_OK);
  sbdc_document_free(document);
}

static void remove_and_rename(void) {
  sbdc_document* const document = make_document(k_text);
  EXPECT_STATUS(sbdc_rename(document, "d.m", "n", 1), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_parameter(document, "d.b"), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_references(document, "d.a"), SBDC_OK);
  EXPECT_STATUS(sbdc_add_block(document, "region", "z", "d", SBDC_BEFORE, "n"), SBDC_OK);
  EXPECT_STATUS(sbdc_set_value(document, "d.z.k", "1"), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_parameter(document, "d.a"), SBDC_OK);
  EXPECT_STATUS(sbdc_verify(document), SBDC_OK);
  {
    double number = 0;
    EXPECT_STATUS(sbdc_get_number(document, "d.z.k", &number), SBDC_OK);
    EXPECT_STATUS(sbdc_get_number(document, "d.n.x", &number), SBDC_OK);
    EXPECT_STATUS(sbdc_get_number(document, "d.m.x", &number), SBDC_NOT_FOUND);
  }
  EXPECT_STATUS(sbdc_remove_references(document, "d.n"), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_block(document, "d.n"), SBDC_OK);
  EXPECT_STATUS(sbdc_verify(document), SBDC_OK);
  sbdc_document_free(document);
}

static void expect_refusal(sbdc_document* document, sbdc_status status) {
  EXPECT_STATUS(status, SBDC_REFUSED);
  EXPECT(sbdc_finding_count(document) >= 1);
  EXPECT(sbdc_finding_count(document) >= 1 && sbdc_finding_at(document, 0)->text[0] != '\0');
  EXPECT_DOCUMENT(document, k_text);
}

static void refuse(void) {
  sbdc_document* const document = make_document(k_text);
  const char* const unknown[] = {"d.nothing"};
  expect_refusal(document, sbdc_set_value(document, "d.b", "5"));
  expect_refusal(document, sbdc_set_value(document, "d.a", "1 2"));
  expect_refusal(document, sbdc_set_value(document, "no.block.p", "1"));
  expect_refusal(document, sbdc_add_value(document, "d.a", "1", SBDC_AT_END, NULL));
  expect_refusal(document, sbdc_add_value(document, "d.new", "1", SBDC_BEFORE, "nobody"));
  expect_refusal(document, sbdc_set_references(document, "d.r", unknown, 1, SBDC_AT_END, NULL));
  expect_refusal(document, sbdc_remove_parameter(document, "d.a"));
  expect_refusal(document, sbdc_remove_block(document, "d.m"));
  expect_refusal(document, sbdc_add_block(document, "module", "top", NULL, SBDC_AT_END, NULL));
  expect_refusal(document, sbdc_rename(document, "d.a", "b", 1));
  expect_refusal(document, sbdc_rename(document, "d.a", "9", 0));

  EXPECT_STATUS(sbdc_remove_parameter(document, "d.nothing"), SBDC_NOT_FOUND);
  EXPECT_STATUS(sbdc_remove_block(document, "nothing"), SBDC_NOT_FOUND);
  EXPECT_STATUS(sbdc_remove_references(document, "nothing"), SBDC_NOT_FOUND);
  EXPECT_STATUS(sbdc_rename(document, "nothing", "x", 1), SBDC_NOT_FOUND);
  EXPECT_NUMBER(sbdc_finding_count(document), 0);
  EXPECT_DOCUMENT(document, k_text);
  sbdc_document_free(document);
}

void test_edits(void) {
  set_and_add();
  remove_and_rename();
  refuse();
}

void test_transactions(void) {
  sbdc_document* const document = make_document(k_text);
  EXPECT_STATUS(sbdc_commit(document), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_roll_back(document), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_begin(document), SBDC_OK);
  EXPECT_STATUS(sbdc_begin(document), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_set_value(document, "d.a", "7"), SBDC_OK);
  EXPECT_STATUS(sbdc_remove_parameter(document, "d.b"), SBDC_OK);
  EXPECT_STATUS(sbdc_roll_back(document), SBDC_OK);
  EXPECT_DOCUMENT(document, k_text);

  EXPECT_STATUS(sbdc_begin(document), SBDC_OK);
  EXPECT_STATUS(sbdc_set_value(document, "d.a", "7"), SBDC_OK);
  EXPECT_STATUS(sbdc_commit(document), SBDC_OK);
  EXPECT_STATUS(sbdc_roll_back(document), SBDC_MISUSE);
  EXPECT(strstr(sbdc_text(document, NULL), "a   = 7;  # first") != NULL);
  sbdc_document_free(document);
}

void test_saving(void) {
  const char path[] = "c_saving.sbd";
  sbdc_document* document = NULL;
  char* saved = NULL;
  write_file(path, k_text);
  EXPECT_STATUS(sbdc_document_new(&document), SBDC_OK);
  EXPECT_STATUS(sbdc_read(document, path), SBDC_OK);
  EXPECT_STATUS(sbdc_set_value(document, "d.a", "50MHz"), SBDC_OK);
  EXPECT_STATUS(sbdc_save(document, NULL), SBDC_OK);
  saved = read_file(path);
  EXPECT_TEXT(saved, sbdc_text(document, NULL));
  free(saved);

  EXPECT_STATUS(sbdc_save_canonical(document, "c_saving_2.sbd"), SBDC_OK);
  saved = read_file("c_saving_2.sbd");
  EXPECT(saved != NULL && strstr(saved, "\n    a = 50MHz;") != NULL);
  free(saved);

  /* What the format has no form for is not saved. */
  EXPECT_STATUS(sbdc_add_block(document, "region", "empty", "d", SBDC_AT_END, NULL), SBDC_OK);
  EXPECT_STATUS(sbdc_verify(document), SBDC_REFUSED);
  EXPECT_NUMBER(sbdc_finding_count(document), 1);
  EXPECT_STATUS(sbdc_save(document, path), SBDC_REFUSED);
  EXPECT(sbdc_finding_count(document) >= 1);
  saved = read_file(path);
  EXPECT(saved != NULL && strstr(saved, "empty") == NULL);
  free(saved);

  EXPECT_STATUS(sbdc_remove_block(document, "d.empty"), SBDC_OK);
  EXPECT_STATUS(sbdc_save(document, "no/such/folder/f.sbd"), SBDC_REFUSED);
  EXPECT_NUMBER(sbdc_finding_at(document, 0)->number, 1);
  sbdc_document_free(document);
  remove(path);
  remove("c_saving_2.sbd");
}
