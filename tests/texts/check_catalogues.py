#!/usr/bin/env python3
"""Looks for what is wrong with translations: check_catalogues.py POT PO...

Every text of POT is translated in every PO, by no guess, with the same values in it, and msgfmt finds nothing wrong.
Prints the faults, and fails when there is one.
"""
import os
import re
import subprocess
import sys


def unquoted(line):
    text = line[line.index('"') + 1:line.rindex('"')]
    return re.sub(r'\\(.)', lambda found: {'n': '\n', 't': '\t'}.get(found[1], found[1]), text)


def entries(path):
    """Every text of a file by its English one: the plural of that, all forms of the translation, whether it is a guess."""
    found, fields, fuzzy, last = {}, {}, False, None
    lines = subprocess.run(['msgcat', '--no-wrap', path], check=True, capture_output=True, text=True).stdout
    for line in lines.splitlines() + ['']:
        if line.startswith('#,'):
            fuzzy = 'fuzzy' in line
        elif line.startswith('msg'):
            last = line.split(' ')[0]
            fields[last] = unquoted(line)
        elif line.startswith('"'):
            fields[last] += unquoted(line)
        elif not line:
            if fields.get('msgid'):
                forms = [value for name, value in fields.items() if name.startswith('msgstr')]
                found[fields['msgid']] = (fields.get('msgid_plural'), forms, fuzzy)
            fields, fuzzy = {}, False
    return found


def values(text):
    text = text.replace('{{', '').replace('}}', '')
    return set(re.findall(r'\{\d*\}', text)) | {'%@' * count for count in [text.count('%@')] if count}


def faults(english, plural, forms, fuzzy):
    if fuzzy:
        yield 'is a guess'
    if not all(forms):
        yield 'is not translated'
        return
    for number, form in enumerate(forms):
        # The form for one thing may leave its number out where the English one does.
        allowed = [values(plural or english)] + ([values(english)] if number == 0 else [])
        if values(form) not in allowed:
            yield f'has the values {sorted(allowed[0])}, its translation {sorted(values(form))}'


def check(template, path):
    # Among others: line breaks at the ends, the number of plural forms.
    made = subprocess.run(['msgfmt', '--check', '--output-file=/dev/null', path], capture_output=True, text=True,
                          env=dict(os.environ, LC_ALL='C.UTF-8', LANGUAGE='en'))
    if made.returncode:
        yield from made.stderr.splitlines()
    translated = entries(path)
    for english in template.keys() | translated.keys():
        if english not in template:
            yield f'{path}: {english!r} is not said any more'
        elif english not in translated:
            yield f'{path}: {english!r} is missing'
        else:
            yield from (f'{path}: {english!r} {fault}' for fault in faults(english, *translated[english]))


def main():
    template = entries(sys.argv[1])
    found = [fault for path in sys.argv[2:] for fault in check(template, path)]
    print('\n'.join(sorted(found)))
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
