/* What a Cortex-M4 needs before main: the table of vectors, the variables, the floating-point unit.
 */
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

extern void stack_end(void); /* an address, as a function's is one in the table */
extern char data_start[], data_end[], data_in_flash[], bss_start[], bss_end[];
extern void initialise_monitor_handles(void); /* semihosting, of newlib's rdimon */
extern int main(void);

void reset(void) {
  volatile uint32_t* const coprocessors = (volatile uint32_t*)0xE000ED88;
  *coprocessors |= 0xFu << 20; /* full access to the floating-point unit */
  memcpy(data_start, data_in_flash, (size_t)(data_end - data_start));
  memset(bss_start, 0, (size_t)(bss_end - bss_start));
  initialise_monitor_handles();
  exit(main());
}

static void halt(void) { abort(); }

/* The initial stack, reset, and the faults */
__attribute__((section(".vectors"), used)) static void (*const vectors[])(void) = {
    stack_end, reset, halt, halt, halt, halt, halt,
};

void _init(void) {}
void _fini(void) {}
