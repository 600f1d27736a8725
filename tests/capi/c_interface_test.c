/* Runs one test of the C interface: c_interface_test NAME FOLDER-OF-EXAMPLES */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tests/capi/c_test.h"

static int g_faults = 0;
static const char* g_examples = "";

void expect(int is_fine, const char* what, const char* file, int line) {
  if (is_fine) return;
  printf("%s:%d: not so: %s\n", file, line, what);
  g_faults++;
}

void expect_status(sbdc_status status, sbdc_status expected, const char* what, const char* file,
                   int line) {
  if (status == expected) return;
  printf("%s:%d: %s: \"%s\", expected \"%s\"\n", file, line, what, sbdc_status_text(status),
         sbdc_status_text(expected));
  g_faults++;
}

void expect_text(const char* text, const char* expected, const char* what, const char* file,
                 int line) {
  if (text != NULL && strcmp(text, expected) == 0) return;
  printf("%s:%d: %s: \"%s\", expected \"%s\"\n", file, line, what, text != NULL ? text : "(null)",
         expected);
  g_faults++;
}

void expect_number(double number, double expected, const char* what, const char* file, int line) {
  if (!(number < expected || number > expected)) return;
  printf("%s:%d: %s: %.17g, expected %.17g\n", file, line, what, number, expected);
  g_faults++;
}

const char* example(const char* name) {
  static char path[4096];
  snprintf(path, sizeof path, "%s/%s", g_examples, name);
  return path;
}

sbdc_document* make_document(const char* text) {
  sbdc_document* document = NULL;
  EXPECT_STATUS(sbdc_document_new(&document), SBDC_OK);
  EXPECT_STATUS(sbdc_read_text(document, text, strlen(text), "text.sbd"), SBDC_OK);
  return document;
}

void expect_document(sbdc_document* document, const char* text, const char* file, int line) {
  size_t length = 0;
  const char* const now = sbdc_text(document, &length);
  expect_text(now, text, "text of the document", file, line);
  expect(length == strlen(text), "length of the text", file, line);
}

char* read_file(const char* path) {
  FILE* const file = fopen(path, "rb");
  char* text = NULL;
  size_t length = 0;
  if (file == NULL) return NULL;
  text = malloc(1 << 20);
  if (text != NULL) {
    length = fread(text, 1, (1 << 20) - 1, file);
    text[length] = '\0';
  }
  fclose(file);
  return text;
}

void write_file(const char* path, const char* text) {
  FILE* const file = fopen(path, "wb");
  EXPECT(file != NULL);
  if (file == NULL) return;
  EXPECT(fwrite(text, 1, strlen(text), file) == strlen(text));
  EXPECT(fclose(file) == 0);
}

int main(int argc, char** argv) {
  static const struct {
    const char* name;
    void (*run)(void);
  } tests[] = {{"documents", test_documents},
               {"queries", test_queries},
               {"listings", test_listings},
               {"walks", test_walks},
               {"nested_lists", test_nested_lists},
               {"edits", test_edits},
               {"transactions", test_transactions},
               {"saving", test_saving},
               {"devices", test_devices},
               {"faulty_devices", test_faulty_devices},
               {"misuse", test_misuse},
               {"threads", test_threads}};
  size_t i = 0;
  if (argc != 3) return 2;
  g_examples = argv[2];
  for (i = 0; i < sizeof tests / sizeof *tests; i++) {
    if (strcmp(tests[i].name, argv[1]) != 0) continue;
    tests[i].run();
    return g_faults == 0 ? 0 : 1;
  }
  printf("no such test: %s\n", argv[1]);
  return 2;
}
