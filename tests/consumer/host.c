/* Reads the model that it is given and prints every output of its one combination at x = 0.5. */

#include <pxrom/pxrom_c.h>
#include <stdio.h>
#include <stdlib.h>

static char message[PXROM_MESSAGE_SIZE];

static int fail(void) {
  fprintf(stderr, "%s\n", message);
  return 1;
}

static int print_outputs(const pxrom_model* model, const pxrom_prepared* prepared) {
  const double point[1] = {0.5};
  double values[8];
  pxrom_parameter output;
  size_t i;
  if (pxrom_prepared_input_count(prepared) != 1 || pxrom_prepared_output_count(prepared) > 8) {
    return 1;
  }
  if (pxrom_prepared_evaluate(prepared, point, 1, PXROM_EXACT, values, NULL, NULL, message,
                              sizeof message) != PXROM_OK) {
    return fail();
  }
  printf("%s", pxrom_version());
  for (i = 0; i < pxrom_prepared_output_count(prepared); ++i) {
    if (pxrom_model_parameter(model, PXROM_OUTPUTS, i, &output, message, sizeof message) !=
        PXROM_OK) {
      return fail();
    }
    printf(" %s=%g", output.id, values[i]);
  }
  printf("\n");
  return 0;
}

int main(int argc, char** argv) {
  static char text[1 << 16];
  pxrom_model* model = NULL;
  pxrom_prepared* prepared = NULL;
  FILE* file = argc > 1 ? fopen(argv[1], "rb") : NULL;
  size_t length;
  int status;
  if (file == NULL) return 1;
  length = fread(text, 1, sizeof text, file);
  fclose(file);
  if (pxrom_model_read(text, length, &model, message, sizeof message) != PXROM_OK) return fail();
  status = pxrom_model_prepare(model, NULL, NULL, 0, &prepared, message, sizeof message) == PXROM_OK
               ? print_outputs(model, prepared)
               : fail();
  pxrom_prepared_free(prepared);
  pxrom_model_free(model);
  return status;
}
