"""Reads a file in the format OpenMetrics and prints its samples as Python reads them: name, labels by name, value."""
import sys

from prometheus_client.openmetrics.parser import text_string_to_metric_families

with open(sys.argv[1], encoding="utf-8", newline="") as file:
    for family in text_string_to_metric_families(file.read()):
        for sample in family.samples:
            labels = "".join(f" {name}={value!r}" for name, value in sorted(sample.labels.items()))
            print(f"{sample.name}{labels} {sample.value:g}")
