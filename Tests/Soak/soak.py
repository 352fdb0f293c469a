#!/usr/bin/env python3
"""The real service and real clients, while the line is cut and programs are killed. Run by scripts/soak."""
import argparse
import asyncio
import collections
import json
import os
import random
import re
import shutil
import signal
import sqlite3
import sys
import tempfile
import time
from pathlib import Path

RUNNING_KEY = 'runningGenerations'  # the client's journal of answers under way
TOKEN = re.compile(r'soak [\w.]+-\d{4}')
FILE = re.compile(r'http://127\.0\.0\.1:\d+/files/')  # as it is delivered; it is stored without the place
CITATION = re.compile(r'\[\[\d+\]\]\(https?://[^)]*\)')
PLACEHOLDERS = {'generating', 'search_in_progress', 'unknown'}


class Failure(Exception):
    pass


class Line:
    """A proxy in front of the service that can be cut, paused and held down."""

    def __init__(self, target):
        self.target = target
        self.writers = set()
        self.flows = asyncio.Event()
        self.flows.set()
        self.is_down = False

    async def listen(self):
        self.server = await asyncio.start_server(self.accept, '127.0.0.1', 0)
        self.port = self.server.sockets[0].getsockname()[1]

    async def accept(self, reader, writer):
        if self.is_down:
            writer.transport.abort()
            return
        try:
            far_reader, far_writer = await asyncio.open_connection('127.0.0.1', self.target.port)
        except OSError:
            writer.transport.abort()
            return
        pair = {writer, far_writer}
        self.writers |= pair
        await asyncio.gather(self.pump(reader, far_writer), self.pump(far_reader, writer))
        self.writers -= pair

    async def pump(self, reader, writer):
        try:
            while data := await reader.read(65536):
                await self.flows.wait()
                writer.write(data)
                await writer.drain()
            writer.close()
        except (OSError, asyncio.CancelledError):
            writer.transport.abort()

    def cut(self):
        for writer in list(self.writers):
            writer.transport.abort()

    async def hold_down(self, seconds):
        self.is_down = True
        self.cut()
        await asyncio.sleep(seconds)
        self.is_down = False

    async def pause(self, seconds):
        self.flows.clear()
        await asyncio.sleep(seconds)
        self.flows.set()


class Program:
    """A process of ours, by its id. One that ends without having been asked to is a fault."""

    def __init__(self, name, log):
        self.name = name
        self.log = log
        self.process = None
        self.is_expected_to_end = False
        self.crashes = 0

    async def spawn(self, *command, env=None):
        self.is_expected_to_end = False
        self.lines = asyncio.Queue()
        with open(self.log, 'ab') as log:
            self.process = await asyncio.create_subprocess_exec(
                *command, env=env, stdin=asyncio.subprocess.PIPE, stdout=asyncio.subprocess.PIPE, stderr=log)
        self.reading = asyncio.create_task(self.read(self.process))

    async def read(self, process):
        while line := await process.stdout.readline():
            self.heard(line.decode().strip())
        status = await process.wait()
        if not self.is_expected_to_end:
            self.crashes += 1
            print(f'  {self.name} ended by itself with status {status}; see {self.log}', flush=True)

    def heard(self, line):
        self.lines.put_nowait(line)

    def is_up(self):
        return self.process is not None and self.process.returncode is None

    async def end(self, number):
        if not self.is_up():
            return
        self.is_expected_to_end = True
        self.process.send_signal(number)
        await self.reading


class Service(Program):
    def __init__(self, program, folder, delay):
        super().__init__('the service', folder / 'service.log')
        self.program = program
        self.data = folder / 'service'
        self.delay = delay
        self.port = 0
        self.codes = collections.defaultdict(list)

    async def start(self):
        for _ in range(20):
            await self.spawn(self.program, '--data', self.data, '--port', str(self.port), '--demo-delay-ms',
                             str(self.delay))
            self.is_expected_to_end = True  # another program may have got the port meanwhile
            line = await asyncio.wait_for(self.started(), 30)
            if line:
                self.port = int(re.search(r'127\.0\.0\.1:(\d+)', line)[1])
                self.is_expected_to_end = False
                return
            await asyncio.sleep(0.3)
        raise Failure(f'the service does not start; see {self.log}')

    async def started(self):
        line = asyncio.create_task(self.lines.get())
        await asyncio.wait({line, self.reading}, return_when=asyncio.FIRST_COMPLETED)
        if line.done():
            return line.result()
        line.cancel()
        return None

    def heard(self, line):
        if match := re.match(r'Код входа для (.*): (\d+)', line):
            self.codes[match[1]].append(match[2])
        else:
            super().heard(line)

    def query(self, sql):
        with sqlite3.connect(self.data / 'korvi.db', timeout=10) as database:
            return database.execute(sql).fetchall()


class Client(Program):
    def __init__(self, program, folder, name, email, seed, service):
        super().__init__(f'client {name}', folder / f'{name}.log')
        self.program = program
        self.short = name
        self.email = email
        self.seed = seed
        self.home = folder / name
        self.home.mkdir()
        self.diary = folder / f'{name}.jsonl'
        self.line = Line(service)
        self.starts = 0

    async def start(self):
        self.starts += 1
        info = self.home / 'Info.json'
        info.write_text(json.dumps({'KorviAPIBaseURL': f'http://127.0.0.1:{self.line.port}/api/v1'}))
        env = dict(os.environ, XDG_DATA_HOME=str(self.home), XDG_CONFIG_HOME=str(self.home), HOME=str(self.home),
                   KORVI_INFO=str(info), QT_QPA_PLATFORM='offscreen', ASAN_OPTIONS='detect_leaks=0',
                   DBUS_SESSION_BUS_ADDRESS='unix:path=/nonexistent',
                   QT_LOGGING_RULES='korvi.chat.*=true')
        await self.spawn(self.program, '--email', self.email, '--name', f'{self.short}.{self.starts}', '--log',
                         self.diary, '--seed', str(self.seed * 1000 + self.starts), env=env)

    def tell(self, line):
        try:
            self.process.stdin.write((line + '\n').encode())
        except (BrokenPipeError, ConnectionResetError):
            pass  # it has just been killed

    async def hear(self, wanted, seconds):
        deadline = time.monotonic() + seconds
        while True:
            try:
                line = await asyncio.wait_for(self.lines.get(), max(0.1, deadline - time.monotonic()))
            except asyncio.TimeoutError:
                raise Failure(f'{self.name} did not say «{wanted}» within {seconds} s; see {self.log}') from None
            if line == wanted:
                return

    async def sign_in(self, service):
        known = len(service.codes[self.email])
        await self.hear('code-wanted', 60)
        while len(service.codes[self.email]) == known:
            await asyncio.sleep(0.05)
        self.tell('code ' + service.codes[self.email][-1])
        await self.hear('signed-in', 60)

    async def report(self, file):
        self.tell(f'report {file}')
        await self.hear('reported', 240)
        return json.loads(file.read_text())

    def is_waiting(self):
        """Whether answers are under way, as it has written down itself."""
        with sqlite3.connect(self.home / 'korvi/defaults.sqlite', timeout=10) as database:
            return bool(database.execute('SELECT 1 FROM defaults WHERE key = ?', (RUNNING_KEY,)).fetchall())

    def notes(self):
        if not self.diary.exists():
            return []
        # The last line may have been cut by a kill: then it was not said.
        return [json.loads(line) for line in self.diary.read_text().splitlines() if line.endswith('}')]


class Trouble:
    """Does one thing after the other to the programs, as the seed says."""

    def __init__(self, chance, service, clients):
        self.chance = chance
        self.service = service
        self.clients = clients
        self.counts = collections.Counter()
        self.started = time.monotonic()

    async def run(self, seconds):
        deadline = time.monotonic() + seconds
        while (left := deadline - time.monotonic()) > 0:
            await asyncio.sleep(min(left, self.chance.uniform(0.2, 4)))
            await self.once()

    def note(self, what, whom):
        self.counts[what] += 1
        self.log.write(f'{time.time():.3f} {what} {whom}\n')
        self.log.flush()

    async def once(self):
        what = self.chance.choices(
            ['cut', 'cut all', 'held down', 'paused', 'paused and cut', 'service killed', 'service stopped',
             'client killed', 'both killed'], [6, 2, 3, 3, 2, 3, 1, 4, 1])[0]
        client = self.chance.choice(self.clients)
        short = self.chance.uniform(0.1, 2) if self.chance.random() < 0.7 else self.chance.uniform(2, 9)
        self.note(what, client.short)
        if what == 'cut':
            client.line.cut()
        elif what == 'cut all':
            for each in self.clients:
                each.line.cut()
        elif what == 'held down':
            await client.line.hold_down(short)
        elif what == 'paused':
            await client.line.pause(short)
        elif what == 'paused and cut':
            client.line.flows.clear()
            await asyncio.sleep(short)
            client.line.cut()
            client.line.flows.set()
        elif what.startswith('service') or what == 'both killed':
            await self.service.end(signal.SIGTERM if what == 'service stopped' else signal.SIGKILL)
            if what == 'both killed':
                await client.end(signal.SIGKILL)
            await asyncio.sleep(self.chance.choice([0, 0, short]))
            await self.service.start()
        if what in ('client killed', 'both killed'):
            await client.end(signal.SIGKILL)
            await asyncio.sleep(self.chance.choice([0, 0, short]))
            await client.start()
            client.tell('go')


def plain(text):
    return FILE.sub('korvi-file:', text)


def without_sources(text):
    """What was seen before its end still has its citations in the text."""
    return ' '.join(CITATION.sub('', text).split())


def block_of(json_block):
    """What tells one block from another, as a line."""
    kind = json_block['type']
    if kind == 'search':
        results = [each['url'] for each in json_block.get('results') or []]
        images = [each['url'] for each in json_block.get('images') or []]
        values = [json_block.get('query') or '', *results, *images]
    else:
        names = {'artifact': ['id', 'version', 'kind', 'title', 'text'], 'video_url': ['videoUrl', 'video_url'],
                 'file_url': ['fileUrl', 'filename', 'mimetype']}.get(kind, ['query', 'text'])
        values = [str(json_block[name]) for name in names if json_block.get(name)]
    return plain('|'.join([kind, *values]))


def blocks_of(content):
    return [block_of(each) for each in content if each['type'] not in ('text', 'thinking')]


def stored_chats(service):
    """email -> chat -> [(question, answer, thinking, blocks, state)]"""
    result = collections.defaultdict(lambda: collections.defaultdict(list))
    rows = service.query(
        'SELECT users.email, chats.id, role, content, state FROM messages JOIN chats ON chats.id = chat_id '
        'JOIN users ON users.id = chats.user_id LEFT JOIN answers ON message_id = messages.id ORDER BY messages.id')
    questions = {}
    for email, chat, role, content, state in rows:
        parts = json.loads(content)
        text, thinking = (plain(''.join(p['text'] for p in parts if p['type'] == kind))
                          for kind in ('text', 'thinking'))
        if role == 'user':
            questions[chat] = text
        else:
            result[email][str(chat)].append((questions.pop(chat, None), text, thinking, blocks_of(parts), state))
    return result


class Verdict:
    def __init__(self):
        self.faults = []
        self.counts = collections.defaultdict(collections.Counter)

    def fault(self, client, kind, what):
        self.counts[client.short][kind] += 1
        self.faults.append(f'{client.short}: {kind}: {what}')


def foreign_tokens(question, text):
    return [token for token in TOKEN.findall(text) if question is None or not question.startswith(token)]


def judge_stored(verdict, clients, stored):
    for client in clients:
        counts = verdict.counts[client.short]
        notes = client.notes()
        said = {kind: [n['text'] for n in notes if n['kind'] == kind] for kind in ('sent', 'returned', 'stopped')}
        asked = collections.Counter(q for chat in stored[client.email].values() for q, *_ in chat)
        returned = set(said['returned'])
        counts['sent'] = len(said['sent'])
        counts['stopped'] = len(said['stopped'])
        counts['returned'] = len(returned)
        counts['received'] = sum(1 for text in said['sent'] if asked[text])
        for text in said['sent']:
            if not asked[text] and text not in returned:
                verdict.fault(client, 'lost', text)
            if asked[text] > 1:
                verdict.fault(client, 'doubled', f'{text} stands {asked[text]} times in the database')
            if asked[text] and text in returned:
                counts['returned too'] += 1
        mine = f'soak {client.short}.'
        for chat, turns in stored[client.email].items():
            for question, text, thinking, blocks, _ in turns:
                if (question or '').startswith(mine) and foreign_tokens(question, text + thinking + str(blocks)):
                    verdict.fault(client, 'mixed', f'the answer to «{question}» in chat {chat} quotes another')


def judge_seen(verdict, client, stored, place, chat, messages, stopped, must_be_whole):
    """What a client shows or caches of a chat against what is stored."""
    turns = stored[client.email].get(chat, [])
    answers = {question: (text, thinking, blocks) for question, text, thinking, blocks, _ in turns}
    elsewhere = {q: c for c, each in stored[client.email].items() for q, *_ in each}
    seen = [m['text'] for m in messages if m['isUser']]
    for text, count in collections.Counter(seen).items():
        if count > 1:
            verdict.fault(client, 'doubled', f'{place}, chat {chat}: «{text}» {count} times')
    if must_be_whole and seen != [q for q, *_ in turns]:
        verdict.fault(client, 'unequal', f'{place}, chat {chat}: the questions are {seen}, stored are {list(answers)}')
    question = None
    for message in messages:
        if message['isUser']:
            question = message['text']
            if question not in answers:
                where = f'stored in chat {elsewhere[question]}' if question in elsewhere else 'stored nowhere'
                verdict.fault(client, 'mixed' if question in elsewhere else 'unequal',
                              f'{place}, chat {chat}: «{question}» is {where}')
            continue
        blocks = blocks_of(message['blocks'])
        if foreign_tokens(question, message['text'] + message['thinking'] + str(blocks)):
            verdict.fault(client, 'mixed', f'{place}, chat {chat}: the answer to «{question}» quotes another')
        if any(block.split('|')[0] in PLACEHOLDERS for block in blocks):
            verdict.fault(client, 'unequal', f'{place}, chat {chat}: in the answer to «{question}» a tool is said to '
                          f'be at work: {blocks}')
        if question not in answers:
            continue
        verdict.counts[client.short]['compared'] += 1
        verdict.counts[client.short]['of tools'] += len(blocks)
        # What another client of the user asked for is shown as far as it had come when it was looked at.
        may_lag = not must_be_whole and not question.startswith(f'soak {client.short}.')
        may_be_short = question in stopped or may_lag
        text, thinking, kept_blocks = answers[question]
        for shown, kept in ((plain(message['text']), text), (message['thinking'], thinking)):
            if shown == kept or (may_be_short and without_sources(kept).startswith(without_sources(shown))):
                continue
            verdict.fault(client, 'unequal', f'{place}, chat {chat}: the answer to «{question}» has {len(shown)} '
                          f'characters, stored are {len(kept)}; a beginning: {kept.startswith(shown)}')
        # The last one may be an artifact that was still growing.
        are_beginning = len(blocks) <= len(kept_blocks) and blocks[:-1] == kept_blocks[:max(0, len(blocks) - 1)]
        if blocks != kept_blocks and not (may_be_short and are_beginning):
            verdict.fault(client, 'unequal', f'{place}, chat {chat}: the answer to «{question}» shows {blocks}, stored '
                          f'are {kept_blocks}')


def judge_report(verdict, client, stored, when, report):
    if not report['isConnected']:
        verdict.fault(client, 'unequal', f'{when}: it is not connected')
    stopped = {n['text'] for n in client.notes() if n['kind'] == 'stopped'}
    for chat, messages in report['cached'].items():
        judge_seen(verdict, client, stored, f'cached {when}', chat, messages, stopped, False)
    if report['open'] > 0:
        judge_seen(verdict, client, stored, f'open {when}', str(report['open']), report['atRest'], stopped, False)
    for chat, messages in report['shown'].items():
        judge_seen(verdict, client, stored, f'loaded {when}', chat, messages, stopped, True)


async def rest(service, clients, seconds):
    """Until nobody waits for anything."""
    deadline = time.monotonic() + seconds
    quiet = 0
    while quiet < 4:
        waiting = [c.short for c in clients if c.is_waiting()]
        running = service.query("SELECT count(*) FROM answers WHERE state = 'running'")[0][0]
        quiet = 0 if waiting or running else quiet + 1
        if time.monotonic() > deadline:
            raise Failure(f'no rest: {running} answers run, {waiting or "nobody"} waits')
        await asyncio.sleep(0.5)


def print_table(verdict, clients):
    columns = ['sent', 'received', 'returned', 'returned too', 'stopped', 'compared', 'of tools', 'lost', 'doubled',
               'mixed', 'unequal']
    rows = [('client', *columns)]
    rows += [(c.short, *(str(verdict.counts[c.short][k]) for k in columns)) for c in clients]
    rows.append(('all', *(str(sum(verdict.counts[c.short][k] for c in clients)) for k in columns)))
    for row in rows:
        print('  ' + row[0].ljust(8) + ''.join(cell.rjust(14) for cell in row[1:]))


async def soak(options, folder):
    chance = random.Random(options.seed)
    service = Service(options.service, folder, options.delay)
    people = [('A', 'anna@example.com'), ('B', 'anna@example.com'), ('C', 'boris@example.com'),
              ('D', 'boris@example.com')]
    clients = [Client(options.client, folder, name, email, options.seed * 10 + i, service)
               for i, (name, email) in enumerate(people)]
    verdict = Verdict()
    try:
        await service.start()
        for client in clients:
            await client.line.listen()
            await client.start()
            await client.sign_in(service)
        for client in clients:
            client.tell('go')
        trouble = Trouble(chance, service, clients)
        with open(folder / 'trouble.log', 'w') as trouble.log:
            await trouble.run(options.seconds)
        print('  ' + ', '.join(f'{what} {count}' for what, count in sorted(trouble.counts.items())), flush=True)

        for client in clients:
            client.tell('rest')
            await client.hear('resting', 60)
        await rest(service, clients, 240)
        before = await asyncio.gather(*(c.report(folder / f'{c.short}-before.json') for c in clients))
        for client in clients:
            await client.end(signal.SIGKILL)
        await service.end(signal.SIGKILL)
        await service.start()
        for client in clients:
            await client.start()
            await client.hear('signed-in', 60)
        await asyncio.sleep(3)
        await rest(service, clients, 240)
        after = await asyncio.gather(*(c.report(folder / f'{c.short}-after.json') for c in clients))

        stored = stored_chats(service)
        judge_stored(verdict, clients, stored)
        for client, at_rest, restarted in zip(clients, before, after):
            judge_report(verdict, client, stored, 'at rest', at_rest)
            judge_report(verdict, client, stored, 'after a restart', restarted)
        print_table(verdict, clients)
        for fault in verdict.faults[:60]:
            print('  ' + fault)
        crashes = service.crashes + sum(c.crashes for c in clients)
        if crashes:
            print(f'  {crashes} times a program ended by itself')
        return not verdict.faults and not crashes
    finally:
        for program in [service, *clients]:
            await program.end(signal.SIGKILL)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--service', required=True)
    parser.add_argument('--client', required=True)
    parser.add_argument('--seconds', type=float, default=300)
    parser.add_argument('--seed', type=int, default=1)
    parser.add_argument('--delay', type=int, default=6)
    options = parser.parse_args()
    folder = Path(tempfile.mkdtemp(prefix='korvi-soak-'))
    is_well = False
    try:
        is_well = asyncio.run(soak(options, folder))
    except Failure as failure:
        print(f'soak: {failure}', file=sys.stderr)
    except KeyboardInterrupt:
        print('soak: interrupted', file=sys.stderr)
    if is_well:
        shutil.rmtree(folder)
    else:
        print(f'  Logs, diaries and data: {folder}')
    return 0 if is_well else 1


if __name__ == '__main__':
    sys.exit(main())
