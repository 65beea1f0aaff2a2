/* Loads the library that it is given, uses it and lets it go: afterwards it is not in memory. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <pxrom/pxrom_c.h>
#include <stdio.h>
#include <string.h>

static int fail(const char* what) {
  fprintf(stderr, "unload: %s\n", what);
  return 1;
}

int main(int argc, char** argv) {
  const char text[] = "no database";
  char message[PXROM_MESSAGE_SIZE];
  pxrom_model* model = NULL;
  pxrom_status (*read)(const char*, size_t, pxrom_model**, char*, size_t);
  void* library = argc > 1 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  void* address = library != NULL ? dlsym(library, "pxrom_model_read") : NULL;
  if (address == NULL) return fail(dlerror());
  memcpy(&read, &address, sizeof read);
  if (read(text, sizeof text - 1, &model, message, sizeof message) != PXROM_REFUSED) {
    return fail("a text that is no database was not refused");
  }
  if (dlclose(library) != 0) return fail(dlerror());
  if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != NULL) return fail("the library is still loaded");
  return 0;
}
