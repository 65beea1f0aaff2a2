/* Calls each function of FMI 2.0 in each mode with arguments that it must refuse, and prints the
 * calls that it accepts. Then it prints whether the instance has kept its values. */
#include <stdio.h>

#include FMU_SOURCE

#define MUST_REFUSE(call) \
  if ((call) < fmi2Discard) printf("%s: accepted %s\n", mode, #call)

static const double nan_number = (double)NAN;
static fmu_state nothing;

static void refuse(const char* mode, fmi2Component c) {
  const fmi2ValueReference unknown[1] = {INSIDE + 1};
  const fmi2ValueReference output[1] = {INSIDE};
  const fmi2ValueReference input[1] = {1};
  double number = 0;
  int integer = 0;
  fmi2String text = "";
  fmi2FMUstate state = 0;
  size_t size = 0;
  char bytes[sizeof(fmu_state)] = {0};
  MUST_REFUSE(fmi2SetDebugLogging(c, 1, 1, 0));
  MUST_REFUSE(fmi2SetupExperiment(c, 0, 0, nan_number, 0, 0));
  MUST_REFUSE(fmi2GetReal(c, 0, 1, &number));
  MUST_REFUSE(fmi2GetReal(c, unknown, 1, &number));
  MUST_REFUSE(fmi2GetReal(c, output, 1, 0));
  MUST_REFUSE(fmi2SetReal(c, 0, 1, &number));
  MUST_REFUSE(fmi2SetReal(c, output, 1, &number));
  MUST_REFUSE(fmi2SetReal(c, unknown, 1, &number));
  MUST_REFUSE(fmi2SetReal(c, input, 1, 0));
  MUST_REFUSE(fmi2GetInteger(c, input, 1, &integer));
  MUST_REFUSE(fmi2GetInteger(c, 0, 1, 0));
  MUST_REFUSE(fmi2SetInteger(c, input, 1, &integer));
  MUST_REFUSE(fmi2SetInteger(c, unknown, 1, &integer));
  MUST_REFUSE(fmi2SetInteger(c, 0, 1, 0));
  MUST_REFUSE(fmi2GetBoolean(c, output, 1, &integer));
  MUST_REFUSE(fmi2SetBoolean(c, output, 1, &integer));
  MUST_REFUSE(fmi2GetString(c, output, 1, &text));
  MUST_REFUSE(fmi2SetString(c, 0, 1, 0));
  MUST_REFUSE(fmi2GetFMUstate(c, 0));
  MUST_REFUSE(fmi2SetFMUstate(c, 0));
  MUST_REFUSE(fmi2SetFMUstate(c, &nothing));
  MUST_REFUSE(fmi2SerializedFMUstateSize(c, 0, &size));
  MUST_REFUSE(fmi2SerializedFMUstateSize(c, bytes, 0));
  MUST_REFUSE(fmi2SerializeFMUstate(c, 0, bytes, sizeof bytes));
  MUST_REFUSE(fmi2SerializeFMUstate(c, bytes, 0, sizeof bytes));
  MUST_REFUSE(fmi2SerializeFMUstate(c, bytes, bytes, 3));
  MUST_REFUSE(fmi2DeSerializeFMUstate(c, 0, sizeof bytes, &state));
  MUST_REFUSE(fmi2DeSerializeFMUstate(c, bytes, sizeof bytes, &state));
  MUST_REFUSE(fmi2DeSerializeFMUstate(c, bytes, 3, &state));
  MUST_REFUSE(fmi2DeSerializeFMUstate(c, bytes, sizeof bytes, 0));
  MUST_REFUSE(fmi2GetDirectionalDerivative(c, output, 1, input, 1, 0, &number));
  MUST_REFUSE(fmi2GetDirectionalDerivative(c, 0, 1, input, 1, &number, &number));
  MUST_REFUSE(fmi2GetDirectionalDerivative(c, input, 1, input, 1, &number, &number));
  MUST_REFUSE(fmi2GetDirectionalDerivative(c, output, 1, output, 1, &number, &number));
  MUST_REFUSE(fmi2GetDirectionalDerivative(c, unknown, 1, unknown, 1, &number, &number));
  MUST_REFUSE(fmi2NewDiscreteStates(c, 0));
  MUST_REFUSE(fmi2CompletedIntegratorStep(c, 1, 0, 0));
  MUST_REFUSE(fmi2SetTime(c, nan_number));
  MUST_REFUSE(fmi2SetContinuousStates(c, &number, 1));
  MUST_REFUSE(fmi2GetDerivatives(c, &number, 1));
  MUST_REFUSE(fmi2GetEventIndicators(c, &number, 1));
  MUST_REFUSE(fmi2GetContinuousStates(c, &number, 1));
  MUST_REFUSE(fmi2GetNominalsOfContinuousStates(c, &number, 1));
  MUST_REFUSE(fmi2SetRealInputDerivatives(c, input, 1, &integer, &number));
  MUST_REFUSE(fmi2GetRealOutputDerivatives(c, output, 1, &integer, &number));
  MUST_REFUSE(fmi2DoStep(c, 0, -1, 0));
  MUST_REFUSE(fmi2DoStep(c, nan_number, 1, 0));
  MUST_REFUSE(fmi2CancelStep(c));
  MUST_REFUSE(fmi2GetStatus(c, fmi2DoStepStatus, 0));
  MUST_REFUSE(fmi2GetRealStatus(c, fmi2LastSuccessfulTime, 0));
  MUST_REFUSE(fmi2GetIntegerStatus(c, fmi2Terminated, 0));
  MUST_REFUSE(fmi2GetBooleanStatus(c, fmi2Terminated, 0));
  MUST_REFUSE(fmi2GetStringStatus(c, fmi2PendingStatus, 0));
}

static void log_message(fmi2ComponentEnvironment environment, fmi2String name, fmi2Status status,
                        fmi2String category, fmi2String message, ...) {
  (void)name;
  (void)category;
  (void)message;
  if (status >= fmi2Discard) ++*(int*)environment;
}

int main(void) {
  int messages = 0;
  const fmi2CallbackFunctions functions = {log_message, 0, 0, 0, &messages};
  const fmi2CallbackFunctions silent = {0, 0, 0, 0, 0};
  const fmi2ValueReference output[1] = {INSIDE - 1};
  double before = 0;
  double after = 0;
  int bits[2] = {0, 0};
  fmi2EventInfo info;
  fmi2Component c = fmi2Instantiate("a", fmi2ModelExchange, TOKEN, 0, &functions, 0, 0);
  fmi2Component s = fmi2Instantiate("b", fmi2CoSimulation, TOKEN, 0, &silent, 0, 0);
  if (fmi2Instantiate("a", fmi2CoSimulation, "{other}", 0, &functions, 0, 0) != 0) return 1;
  if (fmi2Instantiate("a", fmi2CoSimulation, 0, 0, &functions, 0, 0) != 0) return 2;
  if (fmi2Instantiate("", fmi2CoSimulation, TOKEN, 0, 0, 0, 0) != 0) return 3;
  if (messages != 2) return 4;
  refuse("no instance", 0);
  refuse("instantiated", c);
  if (fmi2EnterInitializationMode(c) != fmi2OK) return 5;
  if (fmi2GetReal(c, output, 1, &before) != fmi2OK) return 6;
  refuse("initialization", c);
  if (fmi2EnterInitializationMode(c) != fmi2Error) return 7;
  if (fmi2ExitInitializationMode(c) != fmi2OK) return 8;
  refuse("events", c);
  if (fmi2DoStep(c, 0, 1, 0) != fmi2Error) return 9;
  if (fmi2NewDiscreteStates(c, &info) != fmi2OK) return 10;
  if (fmi2EnterContinuousTimeMode(c) != fmi2OK) return 11;
  refuse("continuous time", c);
  if (fmi2SetTime(c, 2.5) != fmi2OK) return 12;
  if (fmi2CompletedIntegratorStep(c, 1, &bits[0], &bits[1]) != fmi2OK) return 13;
  if (fmi2EnterEventMode(c) != fmi2OK) return 14;
  if (fmi2Terminate(c) != fmi2OK) return 15;
  refuse("terminated", c);
  if (fmi2GetReal(c, output, 1, &after) != fmi2OK) return 16;
  if (fmi2Reset(c) != fmi2OK) return 17;
  if (fmi2Terminate(c) != fmi2Error) return 18;
  if (fmi2EnterInitializationMode(s) != fmi2OK) return 19;
  if (fmi2ExitInitializationMode(s) != fmi2OK) return 20;
  refuse("steps", s);
  if (fmi2EnterEventMode(s) != fmi2Error) return 21;
  if (fmi2DoStep(s, 1, 0.5, 0) != fmi2OK) return 22;
  if (fmi2GetRealStatus(s, fmi2LastSuccessfulTime, &before) != fmi2OK || before != 1.5) return 23;
  if (fmi2GetReal(s, output, 1, &before) != fmi2OK || before != after) return 24;
  fmi2FreeInstance(c);
  fmi2FreeInstance(s);
  fmi2FreeInstance(0);
  printf("values kept\n");
  return 0;
}
