"""What a machine must hold after a send, told from the file and the machine set: the rules of compression, line ends
and code, written down once more and independently of the program."""

import dataclasses
import string

EOB_BYTES = {'crlf': b'', 'lf': b'\n', 'cr': b'\r', 'lfcr': b'\n\r', 'lfcrcr': b'\n\r\r', 'dollar': b'$\r\n',
             'none': b''}
EIA_CHARACTERS = (string.digits + string.ascii_uppercase + '\t\n %&()+,-./').encode()


@dataclasses.dataclass
class Options:
    """The options of a machine set that change a program on its way."""
    data_type: str = 'ascii'
    eob: str = 'crlf'
    comments: bool = False
    numbers: bool = False
    tabs: bool = False
    spaces: bool = False
    character: int = -1  # -1: none
    line_mode: bool = False

    def settings(self):
        return {'data_type': self.data_type, 'eob': self.eob, 'compress_comments': int(self.comments),
                'compress_line_numbers': int(self.numbers), 'compress_tabs': int(self.tabs),
                'compress_spaces': int(self.spaces), 'compress_character_on': int(self.character >= 0),
                'compress_character': self.character, 'eob_delay_ms': int(self.line_mode)}


def compressed(data, options):
    """What the compression leaves of a program."""
    by_syntax = options.comments or options.numbers or options.tabs or options.spaces
    kept = bytearray()
    in_comment = in_number = dropped_comment = has_output = False
    for c in data:
        if by_syntax:
            if c in b'\r\n':
                if in_comment or (dropped_comment and not has_output):
                    if c == 10:
                        in_comment = dropped_comment = False
                    continue
                in_comment = in_number = False
            elif in_comment and options.comments:
                in_comment = c != ord(')')
                continue
            elif in_number:
                if chr(c).isdigit() and c < 0x80:
                    continue
                in_number = False
            elif c == ord('('):
                in_comment = True
                dropped_comment = dropped_comment or options.comments
                if options.comments:
                    continue
            elif c == ord(')'):
                in_comment = False
            elif c == ord('N') and options.numbers and not in_comment:
                in_number = True
                continue
        if (options.spaces and c == 32) or (options.tabs and c == 9) or c == options.character:
            continue
        has_output = c != 10
        kept.append(c)
    return bytes(kept)


def through_eia(data):
    """Capitals, 'O' for ':', and nothing of what has no code."""
    data = data.upper() if data.isascii() else bytes(c - 32 if chr(c) in string.ascii_lowercase else c for c in data)
    return bytes(ord('O') if c == ord(':') else c for c in data if c in EIA_CHARACTERS or c == ord(':'))


def on_machine(data, options):
    """The program as a machine stores it, its blocks ending with CR LF."""
    data = compressed(data, options)
    if options.line_mode:
        data = data.replace(b'\0', b'')
    converted = EOB_BYTES[options.eob] != b''
    if options.data_type == 'eia':
        data = b'\r\n'.join(through_eia(part.replace(b'\n', b'')) for part in data.split(b'\r'))
        return data
    if converted:
        data = data.replace(b'\n', b'').replace(b'\r', b'\r\n')
    return data
