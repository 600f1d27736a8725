/* What the tests of the C interface share. */
#ifndef TESTS_CAPI_C_TEST_H
#define TESTS_CAPI_C_TEST_H

#include <stddef.h>

#include "capi/sbd_c.h"

/* Each prints what differs and counts it; a test goes on behind it. */
#define EXPECT(condition) expect((condition) != 0, #condition, __FILE__, __LINE__)
#define EXPECT_STATUS(call, status) expect_status((call), (status), #call, __FILE__, __LINE__)
#define EXPECT_TEXT(text, expected) expect_text((text), (expected), #text, __FILE__, __LINE__)
#define EXPECT_NUMBER(number, expected) \
  expect_number((double)(number), (double)(expected), #number, __FILE__, __LINE__)

void expect(int is_fine, const char* what, const char* file, int line);
void expect_status(sbdc_status status, sbdc_status expected, const char* what, const char* file,
                   int line);
void expect_text(const char* text, const char* expected, const char* what, const char* file,
                 int line);
void expect_number(double number, double expected, const char* what, const char* file, int line);

/* The path of one of the example descriptors; valid until the next call. */
const char* example(const char* name);

/* A document that holds the text, which has no fault. */
sbdc_document* make_document(const char* text);

/* The document's text now, compared as a whole. */
void expect_document(sbdc_document* document, const char* text, const char* file, int line);
#define EXPECT_DOCUMENT(document, text) expect_document((document), (text), __FILE__, __LINE__)

/* The bytes of a file with a NUL behind them, to be freed; null when it can't be read. */
char* read_file(const char* path);
void write_file(const char* path, const char* text);

void test_documents(void);
void test_queries(void);
void test_listings(void);
void test_walks(void);
void test_nested_lists(void);
void test_edits(void);
void test_transactions(void);
void test_saving(void);
void test_devices(void);
void test_faulty_devices(void);
void test_misuse(void);
void test_threads(void);

#endif
