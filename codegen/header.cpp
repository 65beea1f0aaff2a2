// The header of the generated code.

#include <cmath>
#include <sstream>

#include "codegen/source.h"
#include "pxrom/version.h"

namespace pxrom_codegen {

namespace {

/// One line of an enumeration with its comment.
void Enumerator(std::ostringstream& out, const std::string& name, const std::string& words) {
  out << "  " << name << ',';
  if (!words.empty()) out << " /* " << words << " */";
  out << '\n';
}

}  // namespace

std::string HeaderText(const Interface& interface, bool isFloat) {
  const std::string real = isFloat ? "float" : "double";
  const std::string& name = interface.name;
  const std::string& upper = interface.upper;
  const std::string discrete = interface.TakesDiscrete() ? "const int *discrete, " : "";
  std::ostringstream out;
  out << "#ifndef " << upper << "_H\n#define " << upper << "_H\n\n"
      << "/* A fitted model, written as C99 by pxrom " << PXROM_VERSION_STRING << ".\n"
      << " *\n"
      << " * Example:\n"
      << " *   " << real << " inputs[" << upper << "_INPUT_COUNT];\n"
      << " *   " << real << " values[" << upper << "_OUTPUT_COUNT];\n";
  if (interface.TakesDiscrete()) {
    out << " *   int discrete[" << upper << "_DISCRETE_COUNT];\n"
        << " *   discrete[" << upper << "_DISCRETE_" << interface.discrete[0].name
        << "] = " << interface.keys[0][0] << ";" << (interface.discrete.size() > 1 ? " ..." : "")
        << '\n';
  }
  out << " *   inputs[" << upper << "_INPUT_" << interface.inputs[0].name << "] = ...;\n"
      << " *   if (" << name << "_evaluate(" << (interface.TakesDiscrete() ? "discrete, " : "")
      << "inputs, values, 0) == 0) use(values[" << upper << "_OUTPUT_" << interface.outputs[0].name
      << "]);\n"
      << " *\n"
      << " * The code needs math.h alone. It uses no heap, writes no global, does not recurse, and "
         "may\n"
         " * run in several threads or interrupts at once. int must have at least 32 bits.\n"
      << " *\n"
      << " *   tables     " << interface.tableBytes << " bytes of constants\n"
      << " *   code       up to about " << interface.codeBytes
      << " bytes, optimised for size on a Cortex-M4, without math.h\n"
      << " *   stack      " << interface.stackBytes
      << " bytes per call, without math.h and the self-test\n"
      << " *   operations up to about " << interface.operations
      << " per call with all outputs and errors, exp as forty\n"
      << " *\n";
  if (isFloat) {
    out << " * Results differ from those of the library, which computes in double, by up to "
        << Literal(interface.largestDifference)
        << "\n * of the largest value of the output, measured at the samples and at other "
           "points.\n";
  } else {
    out << " * The results have the same bits as those of the library if math.h is that of the\n"
           " * library and the compiler keeps the order of operations.\n";
  }
  out << " * Compile without -ffast-math and with -ffp-contract=off (GCC has it with -std=c99).\n"
      << " */\n\n#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n";
  if (!interface.chosen.empty()) {
    out << "/* For " << interface.chosen << " */\n\n";
  }
  out << "/* The places of the inputs */\nenum {\n";
  for (const InputWords& input : interface.inputs) {
    Enumerator(out, upper + "_INPUT_" + input.name, input.words);
  }
  out << "  " << upper << "_INPUT_COUNT\n};\n\n";
  if (interface.TakesDiscrete()) {
    out << "/* The places of the discrete inputs */\nenum {\n";
    for (const Variable& input : interface.discrete) {
      Enumerator(out, upper + "_DISCRETE_" + input.name, input.words);
    }
    out << "  " << upper
        << "_DISCRETE_COUNT\n};\n\n/* The fitted combinations of discrete values:\n";
    for (const auto& key : interface.keys) {
      out << " *  ";
      for (const int value : key) out << ' ' << value;
      out << '\n';
    }
    out << " */\n\n";
  }
  out << "/* The places of the outputs */\nenum {\n";
  for (const OutputWords& output : interface.outputs) {
    Enumerator(out, upper + "_OUTPUT_" + output.name, output.words);
  }
  out << "  " << upper << "_OUTPUT_COUNT\n};\n\n"
      << "/* The statuses of results */\nenum {\n"
      << "  " << upper << "_NO_ERROR = -2, /* there is a value, but no predicted error */\n"
      << "  " << upper << "_DONE = 0,\n"
      << "  " << upper << "_FAILED = 1 /* there is no result; it is NaN */\n};\n\n"
      << "#define " << upper << "_STACK_BYTES " << interface.stackBytes << "\n\n";
  const std::string combination =
      interface.TakesDiscrete()
          ? " * " + upper +
                "_FAILED, with nothing written, for discrete values without a combination.\n"
          : "";
  out << "/* The outputs at a point. statuses may be 0; else it gets one status per output. "
         "Returns\n"
      << " * " << upper << "_DONE, or " << upper << "_FAILED when an output has no value.\n"
      << combination << " */\n"
      << "int " << name << "_evaluate(" << discrete << "const " << real << " *inputs, " << real
      << " *values, int *statuses);\n\n";
  if (interface.errors) {
    out << "/* The same with predicted errors, in the unit of the output where its words above do "
           "not\n"
           " * say otherwise. An output that can have no error at all fails here.\n"
           " * Returns "
        << upper << "_NO_ERROR when an output lacks only its error, which is NaN.\n"
        << combination << " */\n"
        << "int " << name << "_evaluate_with_errors(" << discrete << "const " << real
        << " *inputs, " << real << " *values, " << real << " *errors,\n    int *statuses);\n\n";
  }
  if (interface.gradients) {
    out << "/* The derivatives of the outputs by the inputs: for each output one number per "
           "input.\n"
        << combination << " */\n"
        << "int " << name << "_evaluate_gradients(" << discrete << "const " << real << " *inputs, "
        << real << " *gradients, int *statuses);\n\n";
  }
  out << "/* Whether all inputs are within the ranges that the samples of all outputs have in "
         "common;\n"
         " * outside them the model extrapolates.\n";
  for (const InputWords& input : interface.inputs) {
    if (!std::isfinite(input.lowest) || !std::isfinite(input.highest)) continue;
    out << " *   " << interface.upper << "_INPUT_" << input.name << ": " << Literal(input.lowest)
        << " to " << Literal(input.highest) << '\n';
  }
  out << " */\nint " << name << "_inside(const " << real << " *inputs);\n\n"
      << "/* Computes results that are stored with the library's answers. Returns how many of "
         "them\n"
         " * differ by more than the tolerance, relative to the largest of the output, and the "
         "largest\n"
         " * difference in *largest, unless that is 0. A linker that drops unused functions drops "
         "the\n"
         " * stored answers too. */\n"
      << "#define " << upper << "_SELF_TEST_TOLERANCE "
      << (isFloat ? Literal(static_cast<float>(interface.tolerance)) : Literal(interface.tolerance))
      << '\n'
      << "int " << name << "_self_test(" << real << " *largest);\n\n"
      << "#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
  return out.str();
}

}  // namespace pxrom_codegen
