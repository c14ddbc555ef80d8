# SPDX-License-Identifier: Apache-2.0
"""The tables of interfaces and SR policies from a dumped data set, as a script would print them.

    python3 tables.py interface|policy DUMP
"""
import json
import sys

RULE = "-" * 160 + "\n"
TABLE_RULE = " " + "-" * 158 + " \n"
REASONS = {  # those that generated sets have
    5: "Interface not MPLS capable", 7: "Missing IP address", 20: "Missing source address", 23: "Interface down",
    28: "IPv4 protocol is down", 31: "Missing next hop MAC address",
}


def idle_text(probe):
    reason = probe.get("ProbeNotRunningReason", 0)
    if reason:
        return "Not running: " + REASONS.get(reason, "Unknown")
    if not probe.get("ProbeStartTimeStamp", 0):
        wait = probe.get("NextProbeStartTimeRemainingInMillisec", 0)
        return "Probe will start in %u.%u seconds" % (wait // 1000, wait % 1000)
    return None


def counts(probe):
    return "%u/%u" % (probe.get("NumberOfPacketsSent", 0), probe.get("NumberOfPacketsReceived", 0))


def delays(probe):
    values = probe.get("ProbeResults", {})
    return "%u/%u/%u/%u" % tuple(values.get(name, 0) for name in ("Average", "Minimum", "Maximum", "Variance"))


def interface_row(record):
    sessions = record.get("DelayMeasurementSessions", [])
    name = record.get("InterfaceName", "(null)")
    if not sessions:
        return " %-30s%-64s" % (name, "Not running: No session")
    cells = []
    for index, session in enumerate(sessions):
        probe = session.get("CurrentProbe", {})
        idle = idle_text(probe)
        cells.append(" %-30s" % (name if index == 0 else ""))
        cells.append("%-47s" % idle[:63] if idle else "%-16s %-31s" % (counts(probe)[:15], delays(probe)[:31]))
    return "".join(cells)


def cut(name, length):
    return name if len(name) <= length else name[:length] + ".."


def policy_row(record):
    paths = record.get("CandidatePaths", [])
    name = " %-34.34s " % cut(record.get("PolicyName", "(null)"), 32)
    if not paths:
        return name + "%-64s" % "Not running: No session"
    rows = []
    for index, path in enumerate(paths):
        probe = path.get("CurrentProbe", {})
        idle = idle_text(probe)
        cells = "%-39.39s" % idle if idle else "%-11.11s %-43.43s" % (counts(probe), delays(probe)[:31])
        rows.append((name if index == 0 else " %-34.34s " % "") + "%-10.10s " % path.get("Instance", 0) + cells)
    return "\n".join(rows)


TABLES = {
    "interface": ("intf/detail/", interface_row,
                  " %-30s%-16s %-32s\n" % ("Interface Name", "Tx/Rx", "Avg/Min/Max/Variance (uSec)")),
    "policy": ("srpolicy/detail/", policy_row,
               " %-34.34s %-10.10s %-11.11s %-43.43s\n"
               % ("Policy Name(32 char)", "LSP ID", "Tx/Rx", "Avg/Min/Max/Variance (uSec)")),
}


def main():
    prefix, row, header = TABLES[sys.argv[1]]
    nodes = []
    rows = {}
    for line in open(sys.argv[2], encoding="utf-8"):
        document = json.loads(line)
        if "node" in document:
            nodes.append((document["node"]["id"], document["node"]["name"]))
        elif "item" in document and document["item"]["path"].startswith(prefix):
            item = document["item"]
            rows.setdefault(item["node"], []).append(row(item["record"]))
    for node, name in nodes:
        sys.stdout.write("\n" + RULE + name + "\n" + RULE)
        for index, text in enumerate(rows.get(node, [])):
            sys.stdout.write("\n" + (header + TABLE_RULE if index == 0 else "") + text)
    sys.stdout.write("\n\n")


main()
