/* A loop on bare metal: a model without a library, an operating system or a heap. Here the
 * Cortex-M4 is one that QEMU emulates, and prints through semihosting. */
#include <stdio.h>

#include "beam.h"

/* As an integer a number keeps all its bits, whatever a C library can print. */
static void print_bits(const char* name, double number) {
  union {
    double number;
    unsigned char bytes[sizeof(double)];
  } bits;
  bits.number = number;
  printf(" %s ", name);
  for (int i = (int)sizeof(double) - 1; i >= 0; --i) printf("%02x", bits.bytes[i]);
}

int main(void) {
  double inputs[BEAM_INPUT_COUNT];
  double values[BEAM_OUTPUT_COUNT];
  double errors[BEAM_OUTPUT_COUNT];
  double largest = 0;
  const int differences = beam_self_test(&largest);
  printf("self-test: %d differences\n", differences);
  inputs[BEAM_INPUT_H] = 90;
  inputs[BEAM_INPUT_L] = 1.5;
  inputs[BEAM_INPUT_B] = 45;
  for (int force = 1000; force <= 5000; force += 1000) {
    inputs[BEAM_INPUT_F] = force;
    if (beam_evaluate_with_errors(inputs, values, errors, 0) != BEAM_DONE) return 1;
    printf("%d", force);
    print_bits("deflection", values[BEAM_OUTPUT_DEFLECTION]);
    print_bits("stress", values[BEAM_OUTPUT_STRESS]);
    print_bits("error", errors[BEAM_OUTPUT_STRESS]);
    printf("\n");
  }
  return differences;
}
