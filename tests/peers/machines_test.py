#!/usr/bin/env python3
"""The commands of hexlane-cli around the machine sets and ports, and its ways of saying no."""

import resource
import struct

import station
from station import Case, Cli, Simulator

RECORD = 1108


class MachinesTest(Case):
    def run_well(self, *words):
        done = self.home.run(*words)
        self.assertEqual(done.returncode, 0, f'{words}: {done.stderr}')
        return done.stdout

    def table(self):
        return self.home.path('ZOLT/INIT/COMMPARM.INI').read_bytes()

    def shown(self, machine):
        return dict(line.split('=', 1) for line in self.run_well('machines', 'show', machine).splitlines()
                    if not line.startswith('#'))

    def test_first_use_makes_the_file_with_defaults(self):
        lines = self.run_well('machines', 'list').splitlines()
        self.assertEqual((len(lines), len(self.table())), (17, 16 * RECORD))
        self.assertEqual(lines[6].split(), ['6', 'Machine', '6', 'COM1', 'general', 'ascii', '9600', '7N2', 'crlf'])

    def test_settings_reach_their_places_in_the_file(self):
        self.run_well('machines', 'set', 3, 'name=Lathe 3', 'protocol=phillips', 'baud=56000', 'data_bits=8',
                      'parity=odd', 'stop_bits=1', 'eob=dollar', 'port=COM4', 'handshake=hardware', 'start_char=37',
                      'start_char_count=12', 'end_char=-1', 'eob_delay_ms=9999', 'start_string=1,-,3',
                      'compress_spaces=1', 'compress_character=-1', 'receive_timeout_s=999')
        record = self.table()[2 * RECORD:3 * RECORD]
        self.assertEqual(record[:8], b'Lathe 3\0')
        self.assertEqual(struct.unpack_from('<7h', record, 36), (3, 10, 2, 1, 2, 0, 5))
        self.assertEqual(struct.unpack_from('<7h', record, 56), (3, 1, 0, 37, -1, 12, 0))
        self.assertEqual(struct.unpack_from('<h', record, 70), (9999,))
        self.assertEqual(record[75:83], b'\x01\xff\x03\xff\xff\xff\xff\xff')
        self.assertEqual((record[98], record[100]), (1, 0xff))
        self.assertEqual(struct.unpack_from('<h', record, 104), (999,))
        self.assertEqual(self.shown('lathe 3')['start_string'], '1,-,3')

    def test_a_name_is_in_the_table_of_the_rows_in_the_file_and_a_text_for_people(self):
        name = 35 * '\u00c4'
        self.run_well('machines', 'set', 3, 'name=' + name)
        self.assertEqual(self.table()[2 * RECORD:2 * RECORD + 36], 35 * b'\xc4' + b'\0')
        self.assertEqual(self.shown(name)['name'], name)
        rows = self.run_well('machines', 'list').splitlines()
        self.assertEqual(rows[3].index('COM1'), rows[2].index('COM1'))

    def test_what_a_data_type_forces_is_put_in_and_told(self):
        done = self.home.run('machines', 'set', 1, 'parity=even', 'data_type=eia', 'eob=cr', 'xoff_char=147')
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual([line.split(':')[0] for line in done.stderr.splitlines()],
                         ['data_bits=8', 'parity=none', 'eob=lf'])
        shown = self.shown(1)
        self.assertEqual((shown['data_bits'], shown['parity'], shown['eob']), ('8', 'none', 'lf'))

    def test_refused_settings_change_nothing(self):
        self.run_well('machines', 'list')
        before = self.table()
        settings = ('stop_bits=3', 'baud=9601', 'protocol=4', 'name=' + 36 * 'x', 'name=', 'name=M\u03a9LL',
                    'start_string=128', 'start_string=1,2,3,4,5,6,7,8,9', 'xoff_char=20', 'receive_timeout_s=0',
                    'color=red', 'protocol')
        for words in (*(('set', 1, 'protocol=phillips', setting) for setting in settings), ('set', 1),
                      ('set', 17, 'port=COM2'), ('set', 'no such', 'port=COM2'), ('show', 0), ('list', 1),
                      ('import',), ('drop', 1)):
            with self.subTest(words=words):
                self.assertEqual(self.home.run('machines', *words).returncode, 2)
        self.assertEqual(self.table(), before)

    def test_export_and_import(self):
        self.run_well('machines', 'set', 5, 'name=Mill # 5 = [old]', 'preset=bridgeport', 'end_string=13,10,-,4')
        exported = self.table()
        self.run_well('machines', 'export', 'sets.txt')
        self.assertEqual(self.home.run('machines', 'export', 'sets.txt').returncode, 3)  # is there already
        self.run_well('machines', 'set', 5, 'name=Other', 'preset=general', 'data_bits=8', 'parity=even')
        self.assertNotEqual(self.table(), exported)
        self.run_well('machines', 'import', 'sets.txt')
        self.assertEqual(self.table(), exported)

        self.home.write('copy.ini', exported)
        self.run_well('machines', 'set', 5, 'name=Other')
        self.run_well('machines', 'import', 'copy.ini')
        self.assertEqual(self.table(), exported)

    def test_an_export_that_is_not_whole_is_told(self):
        self.run_well('machines', 'list')
        done = self.home.run('machines', 'export', 'sets.txt',
                             preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (5000, 5000)))
        self.assertEqual(done.returncode, 3)

    def test_an_imported_text_gets_what_its_data_types_force(self):
        self.home.write('sets.txt', b'[2]\ndata_type=eia\nparity=even\neob=cr\n[16]\ndata_type=binary\nxoff_char=147\n'
                                    b'eob=lf\neob_delay_ms=5\n')
        self.run_well('machines', 'import', 'sets.txt')
        for machine, forced in ((2, {'data_bits': '8', 'parity': 'none', 'eob': 'lf'}),
                                (16, {'eob': 'none', 'eob_delay_ms': '0', 'xoff_char': '19'})):
            self.assertEqual(forced, {name: self.shown(machine)[name] for name in forced})

    def test_an_import_with_a_fault_changes_nothing(self):
        self.run_well('machines', 'list')
        before = self.table()
        for text, told in (('[1]\nname=New\n[17]\n', 'line 3'), ('name=New\n', 'line 1'), ('[2]\nbaud=1\n', 'line 2'),
                           ('', 'names no machine'), ('\0' * 5000, 'line 1')):
            with self.subTest(text=text[:20]):
                self.home.write('sets.txt', text.encode())
                done = self.home.run('machines', 'import', 'sets.txt')
                self.assertEqual(done.returncode, 3)
                self.assertIn(told, done.stderr)
        self.assertEqual(self.table(), before)

    def test_damaged_numbers_are_shown_and_kept(self):
        self.run_well('machines', 'list')
        damaged = bytearray(self.table())
        struct.pack_into('<h', damaged, RECORD + 36, 77)
        self.home.path('ZOLT/INIT/COMMPARM.INI').write_bytes(damaged)
        self.assertIn('# protocol is 77, out of its limits', self.run_well('machines', 'show', 2))
        self.run_well('machines', 'set', 2, 'port=COM2')
        self.assertEqual(struct.unpack_from('<h', self.table(), RECORD + 36), (77,))

    def test_a_table_that_cannot_be_opened_is_left_alone(self):
        self.run_well('machines', 'list')
        table = self.home.path('ZOLT/INIT/COMMPARM.INI')
        table.unlink()
        table.mkdir()
        done = self.home.run('machines', 'list')
        self.assertEqual(done.returncode, 3)
        self.assertIn('COMMPARM.INI', done.stderr)

    def test_what_others_have_set_meanwhile_is_not_written_over(self):
        with station.Running([station.programs.cli, 'machines', 'import', '-'], self.home) as slow:
            station.wait_for(self.home.path('ZOLT/INIT/COMMPARM.INI').exists)
            self.run_well('machines', 'set', 2, 'name=Theirs')
            slow.process.stdin.write('[3]\nname=Mine\n')
            slow.finish()
            self.assertEqual(slow.process.returncode, 3)
            self.assertIn('another program', slow.error_text())
        self.assertEqual(self.shown(2)['name'], 'Theirs')

    def test_ports_names_devices_and_holders(self):
        with Simulator(self.home, '--receive', 'machine.nc') as machine:
            source = self.home.write('part.nc', b'M30\r\n')
            with Cli(self.home, 'send', '--port', machine.line, '--queue', source) as cli:
                self.home.write('ports', f'COM2 {machine.line}\nCOM3 /dev/not-there\n'.encode())
                lines = self.run_well('ports').splitlines()
                self.assertIn(f'in use by process {cli.process.pid} (hexlane-cli)',
                              [line for line in lines if line.startswith('COM2')][0])
                self.assertIn('not there', [line for line in lines if line.startswith('COM3')][0])
                cli.interrupt()
                self.assertEqual(cli.finish(), 4)

    def test_command_lines_that_make_no_sense(self):
        source = self.home.write('part.nc', b'M30\r\n')
        self.home.set_machine(1, {'handshake': 'hardware'})
        for words in ((), ('sent',), ('send',), ('send', source, source), ('send', '--port'),
                      ('send', '--row', 1, source), ('send', '--from-row', 0, source),
                      ('send', '--machine', 17, source), ('send', '--queue', source), ('receive',),
                      ('receive', '--timeout', 0, 'x'), ('receive', '--queue', 'x'), ('ports', 1)):
            with self.subTest(words=words):
                self.assertEqual(self.home.run(*words).returncode, 2)

    def test_help(self):
        for words in (('--help',), ('send', '--help'), ('receive', '--help'), ('machines', '--help'),
                      ('ports', '--help')):
            text = self.run_well(*words)
            self.assertIn('Use\n', text)
            self.assertTrue(all(len(line) <= 110 for line in text.splitlines()))
        self.assertRegex(self.run_well('--version'), r'^hexlane-cli \d+\.\d+\.\d+\n$')


if __name__ == '__main__':
    station.main()
