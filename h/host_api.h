// Visibility of the host services. The library calls them across a shared-object border, so
// whoever implements them has to export them.
#ifndef H_HOST_API_H
#define H_HOST_API_H

#if defined(__GNUC__)
#define HOST_API __attribute__((visibility("default")))
#else
#define HOST_API
#endif

#endif
