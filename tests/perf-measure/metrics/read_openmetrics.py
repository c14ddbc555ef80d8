# SPDX-License-Identifier: Apache-2.0
"""Reads OpenMetrics text from standard input with a strict parser and checks what that leaves out; prints how many
samples there are."""
import sys

from prometheus_client.openmetrics.parser import text_string_to_metric_families

seen = set()
for family in text_string_to_metric_families(sys.stdin.read()):
    assert family.samples, "%s has no sample" % family.name
    for sample in family.samples:
        series = (sample.name, tuple(sorted(sample.labels.items())))
        assert series not in seen, "%s is there twice" % (series,)
        seen.add(series)
print(len(seen))
