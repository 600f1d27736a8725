// Texts on the heap, for use inside an operation.
#ifndef SBD_READING_SBD_TEXTS_H
#define SBD_READING_SBD_TEXTS_H

// As sbd_copy_text, but throws what the host's memory manager throws.
char* sbd_duplicate_text(const char* text);

#endif
