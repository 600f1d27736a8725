"""Holds what "sbd check --format sarif" prints against the schema of SARIF 2.1.0.

Arguments: the tool, and files to check. The environment variable SBD_SARIF_SCHEMA names the schema;
without it, or without the validator, the test is skipped (exit status 77)."""
import json
import os
import subprocess
import sys

SKIPPED = 77


def skip(reason):
    print("skipped:", reason)
    sys.exit(SKIPPED)


def load_validator():
    path = os.environ.get("SBD_SARIF_SCHEMA", "")
    if not path:
        skip("SBD_SARIF_SCHEMA does not name the schema of SARIF 2.1.0")
    if not os.path.exists(path):
        skip("there is no " + path)
    try:
        import jsonschema
    except ImportError:
        skip("python3-jsonschema is not installed")
    with open(path, encoding="utf-8") as file:
        schema = json.load(file)
    validator = jsonschema.validators.validator_for(schema)
    return validator(schema, format_checker=jsonschema.FormatChecker())


def check(tool, arguments):
    command = [tool, "check", "--format", "sarif"] + arguments
    run = subprocess.run(command, stdout=subprocess.PIPE, check=False)
    return json.loads(run.stdout)


def find_faults(validator, log):
    """What is wrong with a document, beyond the schema as well."""
    faults = [f"{list(error.absolute_path)}: {error.message}"
              for error in validator.iter_errors(log)]
    run = log["runs"][0]
    rules = [rule["id"] for rule in run["tool"]["driver"]["rules"]]
    fingerprints = set()
    for result in run["results"]:
        if rules[result["ruleIndex"]] != result["ruleId"]:
            faults.append("another rule stands at the index of " + result["ruleId"])
        place = result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"]
        fingerprint = (place, result["partialFingerprints"]["sbdFinding/v1"])
        if fingerprint in fingerprints:
            faults.append(f"{fingerprint} stands for two findings")
        fingerprints.add(fingerprint)
    return faults


def main():
    tool, files = sys.argv[1], sys.argv[2:]
    validator = load_validator()
    if not list(validator.iter_errors({"version": "2.1.0"})):
        sys.exit("this schema accepts anything")
    log = check(tool, files)
    faults = find_faults(validator, log) + find_faults(validator, check(tool, ["no such file"]))
    results = log["runs"][0]["results"]
    if not any("relatedLocations" in result for result in results):
        faults.append("no finding has a related location")
    if faults:
        sys.exit("\n".join(faults))
    print(len(results), "findings are valid")


main()
