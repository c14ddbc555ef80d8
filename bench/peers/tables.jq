# SPDX-License-Identifier: Apache-2.0
# The tables of interfaces and SR policies from a dumped data set of one node.
#
#     jq -nj --arg table interface|policy -f tables.jq DUMP

def pad($width): . + " " * ($width - length);
def cell($width): .[:$width] | pad($width);

def reasons: {
  "5": "Interface not MPLS capable", "7": "Missing IP address", "20": "Missing source address",
  "23": "Interface down", "28": "IPv4 protocol is down", "31": "Missing next hop MAC address"
};

def idle:
  if (.ProbeNotRunningReason // 0) != 0 then
    "Not running: " + (reasons[.ProbeNotRunningReason | tostring] // "Unknown")
  elif (.ProbeStartTimeStamp // 0) == 0 then
    (.NextProbeStartTimeRemainingInMillisec // 0)
    | "Probe will start in \(. / 1000 | floor).\(. % 1000) seconds"
  else null end;

def counts: "\(.NumberOfPacketsSent // 0)/\(.NumberOfPacketsReceived // 0)";
def delays:
  .ProbeResults // {}
  | "\(.Average // 0)/\(.Minimum // 0)/\(.Maximum // 0)/\(.Variance // 0)"[:31];

def interface_row:
  (.InterfaceName // "(null)") as $name
  | (.DelayMeasurementSessions // []) as $sessions
  | if ($sessions | length) == 0 then " " + ($name | pad(30)) + ("Not running: No session" | pad(64))
    else
      [ $sessions | to_entries[]
        | (if .key == 0 then $name else "" end) as $first
        | (.value.CurrentProbe // {}) as $probe | ($probe | idle) as $idle
        | " " + ($first | pad(30))
          + (if $idle then $idle | pad(47)
             else ($probe | counts[:15] | pad(16)) + " " + ($probe | delays | pad(31)) end)
      ] | add
    end;

def policy_row:
  ((.PolicyName // "(null)") | if length > 32 then .[:32] + ".." else . end) as $name
  | (.CandidatePaths // []) as $paths
  | if ($paths | length) == 0 then " " + ($name | cell(34)) + " " + ("Not running: No session" | pad(64))
    else
      [ $paths | to_entries[]
        | (.value.CurrentProbe // {}) as $probe | ($probe | idle) as $idle
        | " " + ((if .key == 0 then $name else "" end) | cell(34)) + " "
          + ((.value.Instance // 0) | tostring | cell(10)) + " "
          + (if $idle then $idle | cell(39)
             else ($probe | counts | cell(11)) + " " + ($probe | delays | cell(43)) end)
      ] | join("\n")
    end;

def header:
  if $table == "interface" then
    " " + ("Interface Name" | pad(30)) + ("Tx/Rx" | pad(16)) + " " + ("Avg/Min/Max/Variance (uSec)" | pad(32)) + "\n"
  else
    " " + ("Policy Name(32 char)" | cell(34)) + " " + ("LSP ID" | cell(10)) + " " + ("Tx/Rx" | cell(11)) + " "
    + ("Avg/Min/Max/Variance (uSec)" | cell(43)) + "\n"
  end
  | . + " " + "-" * 158 + " \n";

(if $table == "interface" then "intf/detail/" else "srpolicy/detail/" end) as $prefix
| (foreach inputs as $document (
    {first: true};
    if $document.node then .text = "\n" + "-" * 160 + "\n" + $document.node.name + "\n" + "-" * 160 + "\n"
    elif $document.item and ($document.item.path | startswith($prefix)) then
      .text = "\n" + (if .first then header else "" end)
              + ($document.item.record | if $table == "interface" then interface_row else policy_row end)
      | .first = false
    else .text = "" end;
    .text)),
  "\n\n"
