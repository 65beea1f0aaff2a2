"""A text that looks sound and takes long to evaluate: moving least squares with a full quadratic
trend, whose equations grow with the sixth power of the number of inputs."""

import pathlib

FITTED = pathlib.Path(__file__).parents[1] / "data/models/mls_np_franke_linear_gauss/model.pxdb"


def expensive_model(inputs: int) -> str:
    """A fitted model with other numbers: as many samples as its trend has functions."""
    functions = (inputs + 1) * (inputs + 2) // 2
    names = [f"x{k}" for k in range(inputs)] + ["f"]
    rows = [[7 * row * (k + 3) % 11 for k in range(inputs)] for row in range(functions)]

    def listed(values) -> str:
        return ",".join(map(str, values))

    def named(values) -> str:
        return listed(f"{{{name};{value}}}" for name, value in zip(names, values))

    ones, zeros = [1] * inputs, [0] * inputs
    values = {
        "IDs": listed(names),
        "Causalities": listed([*zeros, 1]),
        "Types": listed([*zeros, 0]),
        "Availability": listed([*ones, 1]),
        "RegistrationRank": named(range(inputs + 1)),
        "Units": named(["-"] * (inputs + 1)),
        "Captions": named(names),
        "LowerBounds": named([*zeros, 0]),
        "UpperBounds": named([*(10 * one for one in ones), 0]),
        "NumberOfInputVariables": inputs,
        "NumberOfSamples": functions,
        "InputSamples": listed(value for row in rows for value in row),
        "OutputSamples": listed(sum(row) % 7 for row in rows),
        "InputScaleSlopes": listed(ones),
        "InputScaleIntercepts": listed(zeros),
        "MLSPolynomialType": 4,
        "MLSNumberOfBasisFunctions": functions,
        "MLSNumberOfUsedPoints": functions,
    }
    lines = FITTED.read_text().split("\n")
    for place, line in enumerate(lines):
        key = line.split("=")[0]
        value = values.get(key.removeprefix("Candidate"))
        if value is not None:
            lines[place] = f"{key}={value}"
    return "\n".join(lines)
