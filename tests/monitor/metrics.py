"""Reads a file with metrics and prints its samples as Python reads them: name, labels by name, value."""
import sys

from prometheus_client import parser
from prometheus_client.openmetrics import parser as openmetrics

with open(sys.argv[1], encoding="utf-8", newline="") as file:
    text = file.read()
for family in (openmetrics if text.endswith("# EOF\n") else parser).text_string_to_metric_families(text):
    for sample in family.samples:
        labels = "".join(f" {name}={value!r}" for name, value in sorted(sample.labels.items()))
        print(f"{sample.name}{labels} {sample.value:g}")
