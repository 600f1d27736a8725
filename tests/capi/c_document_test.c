#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <threads.h>

#include "tests/capi/c_test.h"

/* ---- Reading and findings ---- */

static void expect_finding(const sbdc_document* document, size_t index, int number, const char* key,
                           uint32_t line, uint32_t column) {
  const sbdc_finding* const finding = sbdc_finding_at(document, index);
  EXPECT(finding != NULL);
  if (finding == NULL) return;
  EXPECT(finding->severity == SBDC_ERROR);
  EXPECT_NUMBER(finding->number, number);
  EXPECT_TEXT(finding->key, key);
  EXPECT_TEXT(finding->parameter, "");
  EXPECT_NUMBER(finding->position.line, line);
  EXPECT_NUMBER(finding->position.column, column);
}

static void read_good_file(void) {
  sbdc_document* document = NULL;
  size_t length = 0;
  EXPECT_STATUS(sbdc_document_new(&document), SBDC_OK);
  EXPECT_TEXT(sbdc_text(document, &length), "");
  EXPECT_STATUS(sbdc_read(document, example("qmxa10_full.sbd")), SBDC_OK);
  EXPECT(sbdc_finding_count(document) == 0);
  EXPECT(sbdc_finding_at(document, 0) == NULL);
  EXPECT(sbdc_text(document, &length) != NULL && length > 1000);
  sbdc_document_free(document);
}

static void read_faulty_text(void) {
  const char text[] = "device d {\n  a = ;\n  b = 1;\n  c 2;\n}\n";
  double number = 7;
  sbdc_document* const document = make_document("device d { a = 1; }");
  EXPECT_STATUS(sbdc_read_text(document, text, strlen(text), "f.sbd"), SBDC_FAULTY);
  EXPECT_NUMBER(sbdc_finding_count(document), 2);
  expect_finding(document, 0, 2, "ESBD_SBD_SYNTAX_ERROR", 2, 7);
  expect_finding(document, 1, 2, "ESBD_SBD_SYNTAX_ERROR", 4, 5);
  EXPECT_TEXT(sbdc_finding_at(document, 0)->text,
              "System Build Descriptor File f.sbd contains syntax error \";\" at line 2");
  EXPECT_NUMBER(sbdc_finding_at(document, 0)->position.offset, 17);
  EXPECT_NUMBER(sbdc_finding_at(document, 0)->position.length, 1);
  EXPECT_STATUS(sbdc_get_number(document, "d.a", &number), SBDC_NOT_FOUND);
  EXPECT_NUMBER(number, 7);

  /* The findings are those of the last call. */
  EXPECT_STATUS(sbdc_read_text(document, "device d { a = 2; }", 19, "f.sbd"), SBDC_OK);
  EXPECT_NUMBER(sbdc_finding_count(document), 0);
  sbdc_document_free(document);
}

static void read_missing_file(void) {
  double number = 0;
  sbdc_document* const document = make_document("device d { a = 1; }");
  EXPECT_STATUS(sbdc_read(document, "no such file.sbd"), SBDC_UNREADABLE);
  EXPECT_NUMBER(sbdc_finding_count(document), 1);
  expect_finding(document, 0, 1, "ESBD_SBD_FILE_ERROR", 0, 0);
  EXPECT_STATUS(sbdc_get_number(document, "d.a", &number), SBDC_OK);
  EXPECT_NUMBER(number, 1);
  sbdc_document_free(document);
}

static void read_path_in_utf8(void) {
  const char path[] =
      "b\xc3\xb6"
      "ard \xe5\x9f\xba\xe6\x9d\xbf.sbd";
  sbdc_document* document = NULL;
  int64_t number = 0;
  write_file(path, "device d { a = 5; }");
  EXPECT_STATUS(sbdc_document_new(&document), SBDC_OK);
  EXPECT_STATUS(sbdc_read(document, path), SBDC_OK);
  EXPECT_STATUS(sbdc_get_integer(document, "d.a", &number), SBDC_OK);
  EXPECT_NUMBER(number, 5);
  sbdc_document_free(document);
  remove(path);
}

/* One finding for each of 30000 wrong characters would be too much of a good thing. */
static void read_very_faulty_text(void) {
  static char text[30000];
  sbdc_document* document = NULL;
  memset(text, '@', sizeof text);
  EXPECT_STATUS(sbdc_document_new(&document), SBDC_OK);
  EXPECT_STATUS(sbdc_read_text(document, text, sizeof text, "f.sbd"), SBDC_FAULTY);
  EXPECT_NUMBER(sbdc_finding_count(document), 10000);
  EXPECT(sbdc_omitted_finding_count(document) >= 19999);
  sbdc_document_free(document);
}

/* Two documents in turn: each has its findings. */
static void keep_findings_apart(void) {
  sbdc_document* const good = make_document("device d { a = 1; }");
  sbdc_document* const bad = make_document("device d { a = 1; }");
  EXPECT_STATUS(sbdc_read_text(bad, "device", 6, "f.sbd"), SBDC_FAULTY);
  EXPECT_STATUS(sbdc_set_value(good, "d.a", "2"), SBDC_OK);
  EXPECT_NUMBER(sbdc_finding_count(good), 0);
  EXPECT(sbdc_finding_count(bad) > 0);
  sbdc_document_free(bad);
  sbdc_document_free(good);
}

void test_documents(void) {
  EXPECT(strlen(sbdc_version()) >= 5);
  read_good_file();
  read_faulty_text();
  read_missing_file();
  read_path_in_utf8();
  read_very_faulty_text();
  keep_findings_apart();
}

/* ---- Queries ---- */

static const char k_values[] =
    "device d {\n"
    "  size = 64K; big = 4G; rate = 1.5MHz; half = 0.5; hex = 0xffffffff; minus = -1.5;\n"
    "  yes = true; no = FALSE; word = fast; text = \"two \xc3\xa4 words\"; empty = \"\";\n"
    "  list = {1, 2}; self <d>;\n"
    "}\n";

static void expect_got(const sbdc_document* document, const char* name, const char* expected) {
  char* text = NULL;
  EXPECT_STATUS(sbdc_get_text(document, name, &text), SBDC_OK);
  EXPECT_TEXT(text, expected);
  sbdc_text_free(text);
}

void test_queries(void) {
  sbdc_document* const document = make_document(k_values);
  double number = 0;
  int64_t integer = 0;
  int flag = -1;
  char* text = NULL;

  EXPECT_STATUS(sbdc_get_number(document, "D.Size", &number), SBDC_OK);
  EXPECT_NUMBER(number, 65536);
  EXPECT_STATUS(sbdc_get_number(document, "d.minus", &number), SBDC_OK);
  EXPECT_NUMBER(number, -1.5);
  EXPECT_STATUS(sbdc_get_integer(document, "d.big", &integer), SBDC_OK);
  EXPECT(integer == INT64_C(4294967296));
  EXPECT_STATUS(sbdc_get_integer(document, "d.hex", &integer), SBDC_OK);
  EXPECT(integer == INT64_C(4294967295));
  EXPECT_STATUS(sbdc_get_integer(document, "d.rate", &integer), SBDC_OK);
  EXPECT(integer == 1500000);
  EXPECT_STATUS(sbdc_get_integer(document, "d.half", &integer), SBDC_WRONG_KIND);
  EXPECT(integer == 1500000);

  EXPECT_STATUS(sbdc_get_bool(document, "d.yes", &flag), SBDC_OK);
  EXPECT(flag == 1);
  EXPECT_STATUS(sbdc_get_bool(document, "d.no", &flag), SBDC_OK);
  EXPECT(flag == 0);

  expect_got(document, "d.word", "fast");
  expect_got(document, "d.text", "two \xc3\xa4 words");
  expect_got(document, "d.empty", "");

  EXPECT_STATUS(sbdc_get_number(document, "d.text", &number), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_get_number(document, "d", &number), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_get_number(document, "d.list", &number), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_get_number(document, "d.self", &number), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_get_bool(document, "d.size", &flag), SBDC_WRONG_KIND);
  EXPECT_STATUS(sbdc_get_text(document, "d.size", &text), SBDC_WRONG_KIND);
  EXPECT(text == NULL);
  EXPECT_STATUS(sbdc_get_text(document, "d.nothing", &text), SBDC_NOT_FOUND);
  EXPECT_STATUS(sbdc_get_bool(document, "", &flag), SBDC_NOT_FOUND);
  sbdc_document_free(document);
}

/* ---- Threads ---- */

/* Each thread has a document of its own, and finds just its own faults: as many as its number. */
static int read_in_thread(void* argument) {
  const int number = *(const int*)argument;
  char text[200] = "device d {";
  sbdc_document* document = NULL;
  int round = 0;
  int faults = 0;
  for (round = 0; round < number; round++) strcat(text, " a = ; b = 1;");
  strcat(text, " }");
  if (sbdc_document_new(&document) != SBDC_OK) return 1;
  for (round = 0; round < 200; round++) {
    faults += sbdc_read_text(document, text, strlen(text), "f.sbd") != SBDC_FAULTY;
    faults += sbdc_finding_count(document) != (size_t)number;
  }
  sbdc_document_free(document);
  return faults;
}

static const sbdc_document* g_shared = NULL;

static int query_in_thread(void* argument) {
  int round = 0;
  int faults = 0;
  (void)argument;
  for (round = 0; round < 200; round++) {
    sbdc_listing* listing = NULL;
    double number = 0;
    faults += sbdc_get_number(g_shared, "d.size", &number) != SBDC_OK || number < 65536;
    faults += sbdc_list(g_shared, NULL, SBDC_PARAMETER, &listing) != SBDC_OK;
    faults += sbdc_listing_size(listing) != 12;
    sbdc_listing_free(listing);
  }
  return faults;
}

static void run_in_threads(int (*run)(void*)) {
  enum { k_threads = 4 };
  int numbers[k_threads];
  thrd_t threads[k_threads];
  int i = 0;
  for (i = 0; i < k_threads; i++) {
    numbers[i] = i + 1;
    EXPECT(thrd_create(&threads[i], run, &numbers[i]) == thrd_success);
  }
  for (i = 0; i < k_threads; i++) {
    int faults = -1;
    EXPECT(thrd_join(threads[i], &faults) == thrd_success);
    EXPECT_NUMBER(faults, 0);
  }
}

void test_threads(void) {
  sbdc_document* const shared = make_document(k_values);
  run_in_threads(read_in_thread);
  g_shared = shared;
  run_in_threads(query_in_thread);
  sbdc_document_free(shared);
}
