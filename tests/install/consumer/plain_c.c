/* A program in C, with nothing but the C interface. */
#include <sbd_c.h>
#include <stdio.h>

int main(int argc, char** argv) {
  sbdc_document* document = NULL;
  double width = 0;
  if (argc != 2 || sbdc_document_new(&document) != SBDC_OK) return 2;
  if (sbdc_read(document, argv[1]) != SBDC_OK) return 1;
  if (sbdc_get_number(document, "board.stripe.sdram.data_width", &width) != SBDC_OK) return 1;
  printf("data width %g\n", width);
  sbdc_document_free(document);
  return 0;
}
