# SPDX-License-Identifier: Apache-2.0
"""Reads what perf-measure --json wrote, and compares it with a data set.

    read_back.py JSON-LINES DATA-SET

Prints the number of items, and a line for each that is not as the data set has it.
"""
import json
import sys

MEMBERS = ['node', 'node_name', 'root', 'path', 'type', 'record']


def items_of(path):
    items = {}
    names = {}
    with open(path, encoding='utf-8') as lines:
        for line in lines:
            entry = json.loads(line)
            if 'node' in entry:
                names[entry['node']['id']] = entry['node']['name']
            if 'item' in entry:
                item = entry['item']
                items[item['root'], item['node'], item['path']] = item
    return items, names


items, names = items_of(sys.argv[2])
count = 0
with open(sys.argv[1], encoding='utf-8') as lines:
    for line in lines:
        shown = json.loads(line)
        count += 1
        known = items.get((shown['root'], shown['node'], shown['path']))
        if [each for each in shown if each != 'message'] != MEMBERS:
            print('members', list(shown))
        elif known is None:
            print('not in the data set', shown['root'], shown['node'], shown['path'])
        elif (known['type'], known['record'], names[shown['node']]) != (shown['type'], shown['record'], shown['node_name']):
            print('differs', shown['path'])
print(count)
