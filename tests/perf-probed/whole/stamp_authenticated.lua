-- SPDX-License-Identifier: Apache-2.0
-- The authenticated packets of STAMP (RFC 8762, sections 4.2.2 and 4.3.2) for tshark. Requests go to port 862.
local stamp = Proto("stamp_authenticated", "STAMP, authenticated")
local f = {
  seq = ProtoField.uint32("sa.seq", "Sequence number"),
  time = ProtoField.absolute_time("sa.time", "Time stamp", base.UTC),
  estimate = ProtoField.uint16("sa.estimate", "Error estimate", base.HEX),
  ssid = ProtoField.uint16("sa.ssid", "SSID", base.HEX),
  receive_time = ProtoField.absolute_time("sa.receive_time", "Receive time stamp", base.UTC),
  sender_seq = ProtoField.uint32("sa.sender_seq", "Sender sequence number"),
  sender_time = ProtoField.absolute_time("sa.sender_time", "Sender time stamp", base.UTC),
  sender_estimate = ProtoField.uint16("sa.sender_estimate", "Sender error estimate", base.HEX),
  ttl = ProtoField.uint8("sa.ttl", "Sender TTL"),
  zeros = ProtoField.bool("sa.zeros", "Every reserved octet is zero"),
  hmac_size = ProtoField.uint32("sa.hmac_size", "Octets of the HMAC"),
}
stamp.fields = f

local function add_time(tree, field, range)
  tree:add_packet_field(field, range, ENC_TIME_NTP + ENC_BIG_ENDIAN)
end

-- Whether all octets of these ranges (offset, size) are zero.
local function are_zero(buffer, ranges)
  for _, each in ipairs(ranges) do
    for at = each[1], each[1] + each[2] - 1 do
      if buffer(at, 1):uint() ~= 0 then return false end
    end
  end
  return true
end

function stamp.dissector(buffer, pinfo, root)
  local tree = root:add(stamp, buffer())
  tree:add(f.seq, buffer(0, 4))
  add_time(tree, f.time, buffer(16, 8))
  tree:add(f.estimate, buffer(24, 2))
  tree:add(f.ssid, buffer(26, 2))
  local reserved = { { 4, 12 }, { 28, 68 } }
  if pinfo.src_port == 862 then
    add_time(tree, f.receive_time, buffer(32, 8))
    tree:add(f.sender_seq, buffer(48, 4))
    add_time(tree, f.sender_time, buffer(64, 8))
    tree:add(f.sender_estimate, buffer(72, 2))
    tree:add(f.ttl, buffer(80, 1))
    reserved = { { 4, 12 }, { 28, 4 }, { 40, 8 }, { 52, 12 }, { 74, 6 }, { 81, 15 } }
  end
  tree:add(f.zeros, buffer(0, 0), are_zero(buffer, reserved))
  tree:add(f.hmac_size, buffer(96), buffer:len() - 96)
end

DissectorTable.get("udp.port"):add_for_decode_as(stamp)
