/* Calls each function of FMI 3.0 in each mode with arguments that it must refuse, and prints the
 * calls that it accepts. Then it prints whether the instance has kept its values. */
#include <stdio.h>

#include FMU_SOURCE

#define MUST_REFUSE(call) \
  if ((call) < fmi3Discard) printf("%s: accepted %s\n", mode, #call)

#define MUST_REFUSE_TYPE(NAME)                           \
  {                                                      \
    fmi3##NAME value = 0;                                \
    MUST_REFUSE(fmi3Get##NAME(c, output, 1, &value, 1)); \
    MUST_REFUSE(fmi3Get##NAME(c, 0, 1, 0, 1));           \
    MUST_REFUSE(fmi3Get##NAME(c, 0, 0, 0, 1));           \
    MUST_REFUSE(fmi3Set##NAME(c, output, 1, &value, 1)); \
    MUST_REFUSE(fmi3Set##NAME(c, 0, 1, 0, 1));           \
    MUST_REFUSE(fmi3Set##NAME(c, 0, 0, 0, 1));           \
  }

static const double nan_number = (double)NAN;
static fmu_state nothing;

static void refuse(const char* mode, fmi3Instance c) {
  const fmi3ValueReference unknown[1] = {INSIDE + 1};
  const fmi3ValueReference output[1] = {INSIDE};
  const fmi3ValueReference input[1] = {1};
  double number = 0;
  fmi3Int32 integer = 0;
  fmi3UInt64 count = 0;
  fmi3Clock clock = false;
  fmi3Binary binary = 0;
  fmi3IntervalQualifier qualifier = fmi3IntervalUnchanged;
  fmi3FMUState state = 0;
  size_t size = 0;
  fmi3Byte bytes[sizeof(fmu_state)] = {0};
  MUST_REFUSE(fmi3SetDebugLogging(c, true, 1, 0));
  MUST_REFUSE(fmi3EnterInitializationMode(c, false, 0, nan_number, false, 0));
  MUST_REFUSE(fmi3GetFloat64(c, unknown, 1, &number, 1));
  MUST_REFUSE(fmi3GetFloat64(c, output, 1, &number, 2));
  MUST_REFUSE(fmi3GetFloat64(c, output, 1, 0, 1));
  MUST_REFUSE(fmi3GetFloat64(c, 0, 1, &number, 1));
  MUST_REFUSE(fmi3SetFloat64(c, output, 1, &number, 1));
  MUST_REFUSE(fmi3SetFloat64(c, input, 1, &number, 2));
  MUST_REFUSE(fmi3SetFloat64(c, input, 1, 0, 1));
  MUST_REFUSE_TYPE(Float32)
  MUST_REFUSE_TYPE(Int8)
  MUST_REFUSE_TYPE(UInt8)
  MUST_REFUSE_TYPE(Int16)
  MUST_REFUSE_TYPE(UInt16)
  MUST_REFUSE_TYPE(Int32)
  MUST_REFUSE_TYPE(UInt32)
  MUST_REFUSE_TYPE(Int64)
  MUST_REFUSE_TYPE(UInt64)
  MUST_REFUSE_TYPE(Boolean)
  MUST_REFUSE_TYPE(String)
  MUST_REFUSE(fmi3GetBinary(c, output, 1, &size, &binary, 1));
  MUST_REFUSE(fmi3SetBinary(c, output, 1, &size, &binary, 1));
  MUST_REFUSE(fmi3GetClock(c, output, 1, &clock));
  MUST_REFUSE(fmi3SetClock(c, output, 1, &clock));
  MUST_REFUSE(fmi3GetNumberOfVariableDependencies(c, 1, &size));
  MUST_REFUSE(fmi3GetVariableDependencies(c, 1, 0, 0, 0, 0, 1));
  MUST_REFUSE(fmi3GetFMUState(c, 0));
  MUST_REFUSE(fmi3SetFMUState(c, 0));
  MUST_REFUSE(fmi3SetFMUState(c, &nothing));
  MUST_REFUSE(fmi3SerializedFMUStateSize(c, 0, &size));
  MUST_REFUSE(fmi3SerializeFMUState(c, bytes, bytes, 3));
  MUST_REFUSE(fmi3SerializeFMUState(c, 0, bytes, sizeof bytes));
  MUST_REFUSE(fmi3DeserializeFMUState(c, bytes, sizeof bytes, &state));
  MUST_REFUSE(fmi3DeserializeFMUState(c, 0, 0, &state));
  MUST_REFUSE(fmi3GetDirectionalDerivative(c, output, 1, input, 1, &number, 2, &number, 1));
  MUST_REFUSE(fmi3GetDirectionalDerivative(c, output, 1, input, 1, 0, 1, &number, 1));
  MUST_REFUSE(fmi3GetDirectionalDerivative(c, unknown, 1, input, 1, &number, 1, &number, 1));
  MUST_REFUSE(fmi3GetAdjointDerivative(c, output, 1, input, 1, &number, 1, &number, 2));
  MUST_REFUSE(fmi3GetAdjointDerivative(c, output, 1, input, 1, &number, 1, 0, 1));
  MUST_REFUSE(fmi3GetAdjointDerivative(c, output, 1, output, 1, &number, 1, &number, 1));
  MUST_REFUSE(fmi3EnterConfigurationMode(c));
  MUST_REFUSE(fmi3ExitConfigurationMode(c));
  MUST_REFUSE(fmi3GetIntervalDecimal(c, output, 1, &number, &qualifier));
  MUST_REFUSE(fmi3GetIntervalFraction(c, output, 1, &count, &count, &qualifier));
  MUST_REFUSE(fmi3GetShiftDecimal(c, output, 1, &number));
  MUST_REFUSE(fmi3GetShiftFraction(c, output, 1, &count, &count));
  MUST_REFUSE(fmi3SetIntervalDecimal(c, output, 1, &number));
  MUST_REFUSE(fmi3SetIntervalFraction(c, output, 1, &count, &count));
  MUST_REFUSE(fmi3SetShiftDecimal(c, output, 1, &number));
  MUST_REFUSE(fmi3SetShiftFraction(c, output, 1, &count, &count));
  MUST_REFUSE(fmi3SetTime(c, nan_number));
  MUST_REFUSE(fmi3SetContinuousStates(c, &number, 1));
  MUST_REFUSE(fmi3GetContinuousStateDerivatives(c, &number, 1));
  MUST_REFUSE(fmi3GetEventIndicators(c, &number, 1));
  MUST_REFUSE(fmi3GetContinuousStates(c, &number, 1));
  MUST_REFUSE(fmi3GetNominalsOfContinuousStates(c, &number, 1));
  MUST_REFUSE(fmi3GetNumberOfEventIndicators(c, 0));
  MUST_REFUSE(fmi3GetNumberOfContinuousStates(c, 0));
  MUST_REFUSE(fmi3EnterStepMode(c));
  MUST_REFUSE(fmi3GetOutputDerivatives(c, output, 1, &integer, &number, 1));
  MUST_REFUSE(fmi3DoStep(c, 0, -1, true, 0, 0, 0, 0));
  MUST_REFUSE(fmi3DoStep(c, 0, nan_number, true, 0, 0, 0, 0));
  MUST_REFUSE(fmi3ActivateModelPartition(c, 1, 0));
}

static void log_message(fmi3InstanceEnvironment environment, fmi3Status status, fmi3String category,
                        fmi3String message) {
  (void)category;
  (void)message;
  if (status >= fmi3Discard) ++*(int*)environment;
}

int main(void) {
  int messages = 0;
  const fmi3ValueReference output[1] = {INSIDE - 1};
  double before = 0;
  double after = 0;
  size_t count = 1;
  fmi3Instance c =
      fmi3InstantiateModelExchange("a", TOKEN, 0, false, false, &messages, log_message);
  fmi3Instance s =
      fmi3InstantiateCoSimulation("b", TOKEN, 0, false, false, false, false, 0, 0, 0, 0, 0);
  if (fmi3InstantiateModelExchange("a", "{other}", 0, false, false, &messages, log_message) != 0) {
    return 1;
  }
  if (fmi3InstantiateCoSimulation("b", TOKEN, 0, false, false, true, false, 0, 0, &messages,
                                  log_message, 0) != 0) {
    return 2;
  }
  if (fmi3InstantiateScheduledExecution("c", TOKEN, 0, false, false, &messages, log_message, 0, 0,
                                        0) != 0) {
    return 3;
  }
  if (messages != 3) return 4;
  refuse("no instance", 0);
  refuse("instantiated", c);
  if (fmi3EnterInitializationMode(c, false, 0, 0, false, 0) != fmi3OK) return 5;
  if (fmi3GetFloat64(c, output, 1, &before, 1) != fmi3OK) return 6;
  refuse("initialization", c);
  if (fmi3ExitInitializationMode(c) != fmi3OK) return 7;
  refuse("events", c);
  if (fmi3UpdateDiscreteStates(c, 0, 0, 0, 0, 0, 0) != fmi3OK) return 8;
  if (fmi3EvaluateDiscreteStates(c) != fmi3OK) return 9;
  if (fmi3EnterContinuousTimeMode(c) != fmi3OK) return 10;
  refuse("continuous time", c);
  if (fmi3SetTime(c, 2.5) != fmi3OK) return 11;
  if (fmi3CompletedIntegratorStep(c, true, 0, 0) != fmi3OK) return 12;
  if (fmi3UpdateDiscreteStates(c, 0, 0, 0, 0, 0, 0) != fmi3Error) return 13;
  if (fmi3EnterEventMode(c) != fmi3OK) return 14;
  if (fmi3GetNumberOfContinuousStates(c, &count) != fmi3OK || count != 0) return 15;
  if (fmi3Terminate(c) != fmi3OK) return 16;
  refuse("terminated", c);
  if (fmi3GetFloat64(c, output, 1, &after, 1) != fmi3OK) return 17;
  if (fmi3Reset(c) != fmi3OK) return 18;
  if (fmi3EnterInitializationMode(s, false, 0, 1, false, 0) != fmi3OK) return 19;
  if (fmi3ExitInitializationMode(s) != fmi3OK) return 20;
  refuse("steps", s);
  if (fmi3DoStep(s, 1, 0.5, true, 0, 0, 0, &before) != fmi3OK || before != 1.5) return 21;
  if (fmi3GetFloat64(s, output, 1, &before, 1) != fmi3OK || before != after) return 22;
  fmi3FreeInstance(c);
  fmi3FreeInstance(s);
  fmi3FreeInstance(0);
  printf("values kept\n");
  return 0;
}
