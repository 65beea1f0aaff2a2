#!/usr/bin/env python3
"""Makes the seeds of tests/data/fuzz from our models: short ones, and ones that are damaged.

A seed keeps the shape of its model (families, cross-validation, error data) with few samples and
short numbers. Run it in this folder; cases that a fuzzer found stand beside and are left alone.
"""

import math
import os
import re
import shutil
import struct

SAMPLES = 5
MODELS = "../models"


def short(token):
    try:
        return format(float(token), ".3g")
    except ValueError:
        return token


def cut(lines):
    """One group's lines with SAMPLES samples at most."""
    value = {line.split("=")[0]: line.split("=", 1)[1] for line in lines if "=" in line}

    def count(*keys):
        return next((int(value[key]) for key in keys if key in value), 0)

    inputs = count("NumberOfInputVariables", "CandidateNumberOfInputVariables")
    old = count("NumberOfSamples", "CandidateNumberOfSamples")
    new = min(old, SAMPLES)
    out = []
    for line in lines:
        key, sign, text = line.partition("=")
        if not sign or line.startswith("<"):
            out.append(line)
            continue
        items = [short(item) for item in text.split(",")]
        if key in ("NumberOfSamples", "CandidateNumberOfSamples", "MLSNumberOfUsedPoints"):
            items = [str(new)]
        elif key in ("InputSamples", "CandidateInputSamples", "attScInputPoints"):
            items = items[: new * inputs]
        elif key in ("KrigingInverseOfC", "KrigingFTilde"):
            rows = [items[i : i + old][:new] for i in range(0, len(items), old)]
            items = sum(rows[:new] if key == "KrigingInverseOfC" else rows, [])
        elif key == "CardinalOfEachFold":
            items = ["2", "3"]
        elif len(items) == old and old > inputs:
            items = items[:new]
        out.append(key + "=" + ",".join(items))
    return out


def groups(lines, tag):
    """Pairs of the lines outside (None, lines) and inside of each group of `tag`."""
    result, current, inside = [], [], None
    for line in lines:
        found = re.match(r"<%s ID=(\d+)>" % tag, line)
        if found:
            result.append((None, current))
            current, inside = [], int(found.group(1))
        elif line == "</%s>" % tag:
            result.append((inside, current))
            current, inside = [], None
        else:
            current.append(line)
    result.append((None, current))
    return result


def shortened(path, keep_outputs):
    lines = open(path).read().split("\n")
    plexura = {number: body for number, body in groups(lines, "PlexuraData") if number is not None}
    head = groups(lines, "PlexuraData")[0][1]
    sets = [line for line in head if line.startswith("DiscreteSet=")]
    # One combination, of which the outputs to keep are told by their places.
    pairs = re.findall(r"\{([^;]*);(\d+)\}", sets[0])
    outputs = [pair for pair in pairs if int(pair[1]) in plexura and pair[0] not in ("Material", "Holes")]
    kept = [outputs[i] for i in keep_outputs]
    dropped = {name for name, _ in outputs} - {name for name, _ in kept}
    out = []
    ids = next(line for line in head if line.startswith("IDs="))[4:].split(",")
    for line in head:
        if line.startswith("DiscreteSet="):
            if line != sets[0]:
                continue
            line = "DiscreteSet=" + ",".join(
                "{%s;%s}" % pair for pair in pairs if pair[0] not in dropped
            )
        elif line.startswith("Availability="):
            flags = line.split("=")[1].split(",")
            line = "Availability=" + ",".join(
                "0" if name in dropped else flag for name, flag in zip(ids, flags)
            )
        out.append(line)
    for _, number in kept:
        body = plexura[int(number)]
        inner = groups(body, "Genome")
        top = cut(inner[0][1])
        genomes = [lines for n, lines in inner if n is not None]
        cardinality = int(next(l for l in top if l.startswith("CandidateRSCardinality=")).split("=")[1])
        subs = genomes[cardinality:]
        per = len(subs) // cardinality
        genomes = genomes[:cardinality] + [
            subs[r * per + f] for r in range(cardinality if per else 0) for f in range(2)
        ]
        top = [
            "CandidateSubRSCardinality=%d" % (2 * cardinality) if l.startswith("CandidateSubRS") else l
            for l in top
        ]
        out += ["<PlexuraData ID=%s>" % number] + top
        for i, genome in enumerate(genomes):
            out += ["<Genome ID=%d>" % i] + cut(genome) + ["</Genome>"]
        out += ["</PlexuraData>"]
    return "\n".join(line for line in out if line) + "\n"


def write(name, text):
    os.makedirs(os.path.dirname(name), exist_ok=True)
    with open(name, "w", newline="") as file:
        file.write(text)


def main():
    texts = {}
    for model in sorted(os.listdir(MODELS)):
        path = os.path.join(MODELS, model, "model.pxdb")
        if os.path.exists(path) and model != "study_beam":
            texts[model] = shortened(path, [0])
    beam = os.path.join(MODELS, "study_beam", "model.pxdb")
    for place, name in enumerate(["mass", "deflection", "stress"]):
        texts["beam_" + name] = shortened(beam, [place])
    for name, text in texts.items():
        write("database/%s.pxdb" % name, text)

    base = texts["constant_sk_dummy"]
    group = base[base.index("<PlexuraData") :]
    damaged = {
        "empty": "",
        "open_tags_only": "<ParameterRegistry><DiscreteSets><PlexuraData ID=0><Genome ID=0>",
        "no_registry": base[base.index("<DiscreteSets") :],
        "no_groups": base[: base.index("<PlexuraData")],
        "group_first": group + base[: base.index("<PlexuraData")],
        "no_closing_tags": re.sub(r"</\w+>\n", "", base),
        "crossed_tags": base.replace("</Genome>\n</PlexuraData>", "</PlexuraData>\n</Genome>"),
        "carriage_returns": base.replace("\n", "\r\n"),
        "empty_pair": base.replace("DiscreteSet={", "DiscreteSet=,{"),
        "negative_counts": re.sub(r"(NumberOf\w+)=\d+", r"\1=-1", base),
        "huge_counts": re.sub(r"(NumberOf\w+)=\d+", r"\1=2147483647", base),
        "huge_cardinality": base.replace("RSCardinality=1", "RSCardinality=2147483647"),
        "no_samples": re.sub(r"(NumberOf\w*Samples)=\d+", r"\1=0", base),
        "no_inputs": re.sub(r"(NumberOf\w*Variables)=\d+", r"\1=0", base),
        "zero_slopes": re.sub(r"(Slopes?)=.*", r"\1=0,0", base),
        "keys_twice": base.replace("DataType=8", "DataType=8\nDataType=4"),
        "many_combinations": base.replace(
            "<DiscreteSets>\n", "<DiscreteSets>\n" + "DiscreteSet={mean;0}\n" * 40
        ),
        "kriging_without_samples": re.sub(
            r"(NumberOf\w*Samples)=\d+", r"\1=0", texts["kriging_sk_linnerud"]
        ),
        "mls_without_samples": re.sub(
            r"(NumberOf\w*Samples|UsedPoints)=\d+", r"\1=0", texts["mls_np_franke_linear_gauss"]
        ),
        "terms_claimed": texts["qrs_sm_stackloss"].replace("MaxRegTerm=10", "MaxRegTerm=2147483647"),
        "folds_claimed": texts["beam_stress"].replace("CardinalOfEachFold=2,3", "CardinalOfEachFold=2147483647,2147483647"),
    }
    for name, text in damaged.items():
        write("database/damaged_%s.pxdb" % name, text)

    # Behind the last NUL stand the inputs.
    for model, name, values in (
        ("kriging_sk_linnerud", "kriging_not_finite", [math.nan, math.inf, -math.inf]),
        ("qrs_sm_piston_loglog", "regression_of_negatives", [-1.0, 0.0, -1e308]),
        ("mls_np_franke_linear_gauss", "mls_far_away", [1e308, 5e-324]),
        ("beam_stress", "cross_validation_tiny", [5e-324, -0.0, 1e-308, 1.0]),
    ):
        os.makedirs("evaluate", exist_ok=True)
        with open("evaluate/%s.bin" % name, "wb") as file:
            tail = struct.pack("<%dd" % len(values), *values)
            file.write(texts[model].encode() + b"\0" + tail)

    write("tokens/numbers.bin", ",;\x00\x401,-2.5,+3e5, 4 ,1e,.5,1e999,nan,-0,2147483648,")
    write("tokens/pairs.bin", ",;\x00\x40{a;1},{b;2},{c},{},x,{d;e;f}\r\n")
    write("tokens/groups.bin", ",;\x02\x30<A>x=1\nA=2\n</A><FMU>FMU=3</FMU>")
    for name in ("Dahlquist.xml", "Resource.xml", "Stair.xml"):
        os.makedirs("fmu", exist_ok=True)
        shutil.copy(os.path.join("../fmi", name), "fmu/" + name)
    variable = '<ScalarVariable name="a" valueReference="1" causality="input"><Real/></ScalarVariable>'
    write("fmu/short.xml", '<fmiModelDescription guid="g" numberOfContinuousStates="1"><ModelVariables>'
          + variable + "</ModelVariables></fmiModelDescription>")
    write("fmu/unclosed.xml", '<fmiModelDescription guid="<ModelVariables>' + "<ScalarVariable name=" * 5)


main()
