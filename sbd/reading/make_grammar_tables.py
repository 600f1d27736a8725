#!/usr/bin/env python3
"""Makes sbd_grammar_tables.h: the LALR(1) automaton of the descriptor grammar.

Run it after a change of the grammar below:  make_grammar_tables.py > sbd_grammar_tables.h

The automaton reduces by default as the usual generators' do (the rule that most look-aheads call
for, and none where the error token can be shifted), because that decides which states an error
finds on the stack.
"""

import collections

# Numbered from 1 in this order; of two rules that could be reduced, the earlier one is.
GRAMMAR = """
input: | object_list
object_list: object | object_list object
object: COMMENT_LINE | block
block: IDENTIFIER block_name { block_member_list } | error
block_name: IDENTIFIER | INDEXED_NAME
block_member_list: block_member | block_member_list block_member
block_member: COMMENT_LINE | statement | block
statement: parameter = expression ; | parameter = expression ; COMMENT_TAIL
statement: parameter = expression [ para_attr_list ] ;
statement: parameter = expression [ para_attr_list ] ; COMMENT_TAIL
statement: parameter < para_ref_list > ; | parameter < para_ref_list > ; COMMENT_TAIL | error
parameter: IDENTIFIER | INDEXED_NAME
expression: number unit | number | TRUE | FALSE | STRING | IDENTIFIER | { expression_list }
expression_list: expression , expression | expression_list , expression
number: UDECIMAL | BINARY | OCTAL | HEXAL | FLOAT
unit: KB | MB | GB | HZ | MHZ
para_ref_list: para_ref | para_ref_list , para_ref
para_ref: QUALIFIED_NAME | IDENTIFIER
para_attr_list: para_attr | para_attr_list , para_attr
para_attr: IDENTIFIER | IDENTIFIER QUALIFIED_NAME
"""

END = "END"
ERROR = "error"
NAMED_TOKENS = """IDENTIFIER UDECIMAL OCTAL HEXAL BINARY FLOAT KB MB GB HZ MHZ TRUE FALSE STRING
COMMENT_LINE COMMENT_TAIL INDEXED_NAME QUALIFIED_NAME""".split()
PUNCTUATION = list("{}=;[]<>,")
TERMINALS = [END, ERROR] + NAMED_TOKENS + PUNCTUATION


def read_grammar():
    rules = [("accept", ["input"])]
    for line in GRAMMAR.strip().splitlines():
        left, _, alternatives = line.partition(":")
        rules += [(left, one.split()) for one in alternatives.split("|")]
    return rules


RULES = read_grammar()
NONTERMINALS = list(dict.fromkeys(left for left, _ in RULES))
RULES_OF = {left: [i for i, rule in enumerate(RULES) if rule[0] == left] for left in NONTERMINALS}


def find_first_sets():
    first = {symbol: {symbol} for symbol in TERMINALS}
    first.update({symbol: set() for symbol in NONTERMINALS})
    nullable = set()
    changed = True
    while changed:
        changed = False
        for left, right in RULES:
            before = (len(first[left]), left in nullable)
            for symbol in right:
                first[left] |= first[symbol]
                if symbol not in nullable:
                    break
            else:
                nullable.add(left)
            changed |= before != (len(first[left]), left in nullable)
    return first, nullable


FIRST, NULLABLE = find_first_sets()


def first_of(symbols, follower):
    result = set()
    for symbol in symbols:
        result |= FIRST[symbol]
        if symbol not in NULLABLE:
            return result
    return result | {follower}


def close(items):
    """The closure of LR(1) items (rule, dot, look-ahead)."""
    closed = set(items)
    work = list(items)
    while work:
        rule, dot, follower = work.pop()
        right = RULES[rule][1]
        if dot == len(right) or right[dot] not in RULES_OF:
            continue
        for next_follower in first_of(right[dot + 1:], follower):
            for next_rule in RULES_OF[right[dot]]:
                item = (next_rule, 0, next_follower)
                if item not in closed:
                    closed.add(item)
                    work.append(item)
    return closed


def build_states():
    """LR(1) states merged by their cores: the LALR(1) states with their look-aheads."""
    cores = {}
    kernels = []
    gotos = []

    def core_of(kernel):
        return frozenset((rule, dot) for rule, dot, _ in kernel)

    def add(kernel):
        core = core_of(kernel)
        if core not in cores:
            cores[core] = len(kernels)
            kernels.append(set())
            gotos.append({})
        state = cores[core]
        grown = not kernel <= kernels[state]
        kernels[state] |= kernel
        return state, grown

    work = collections.deque([add({(0, 0, END)})[0]])
    while work:
        state = work.popleft()
        moves = collections.defaultdict(set)
        for rule, dot, follower in close(kernels[state]):
            right = RULES[rule][1]
            if dot < len(right):
                moves[right[dot]].add((rule, dot + 1, follower))
        for symbol in sorted(moves):
            target, grown = add(moves[symbol])
            gotos[state][symbol] = target
            if grown:
                work.append(target)
    return kernels, gotos


def reductions_of(kernel):
    """Look-aheads by rule, each look-ahead with the earliest rule that claims it."""
    claims = {}
    for rule, dot, follower in sorted(close(kernel)):
        if dot == len(RULES[rule][1]):
            claims.setdefault(follower, rule)
    result = collections.defaultdict(set)
    for follower, rule in claims.items():
        result[rule].add(follower)
    return result


def make_actions(kernels, gotos):
    """Per state and terminal: n > 0 shifts to state n - 1, n < 0 reduces rule -n, 0 is an error."""
    actions = []
    for kernel, targets in zip(kernels, gotos):
        reductions = reductions_of(kernel)
        row = {terminal: 0 for terminal in TERMINALS}
        for rule, followers in reductions.items():
            for follower in followers:
                row[follower] = ACCEPT if rule == 0 else -rule
        if ERROR not in targets and reductions:
            default = max(sorted(reductions), key=lambda rule: len(reductions[rule]))
            if default != 0:
                row.update({t: -default for t in TERMINALS if row[t] == 0})
        row.update({t: targets[t] + 1 for t in TERMINALS if t in targets})
        actions.append([row[terminal] for terminal in TERMINALS])
    return actions


ACCEPT = 127


def print_table(declaration, rows):
    print(f"{declaration} = {{")
    for row in rows:
        print("    {" + ", ".join(map(str, row)) + "},")
    print("};")


def main():
    kernels, gotos = build_states()
    left_sides = [NONTERMINALS.index(left) for left, _ in RULES]
    lengths = [len(right) for _, right in RULES]
    print("// Made by make_grammar_tables.py; do not edit.")
    print("#ifndef SBD_READING_SBD_GRAMMAR_TABLES_H")
    print("#define SBD_READING_SBD_GRAMMAR_TABLES_H\n")
    print("#include <cstdint>\n")
    print("// clang-format off")
    print(f"inline constexpr int k_state_count = {len(kernels)};")
    print(f"inline constexpr int k_terminal_count = {len(TERMINALS)};")
    print(f"inline constexpr int k_nonterminal_count = {len(NONTERMINALS)};")
    print(f"inline constexpr int k_accept = {ACCEPT};")
    print(f"inline constexpr int k_error_terminal = {TERMINALS.index(ERROR)};\n")
    print("// The token code of each terminal.")
    print("inline constexpr int k_terminal_codes[k_terminal_count] = {")
    codes = {END: "0", ERROR: "256", **{c: f"'{c}'" for c in PUNCTUATION}}
    print("    " + ", ".join(codes.get(t, f"SBD_TOK_{t}") for t in TERMINALS) + "};\n")
    print("// n > 0 shifts to state n - 1, n < 0 reduces rule -n, 0 is an error.")
    print_table("inline constexpr std::int16_t k_actions[k_state_count][k_terminal_count]",
                make_actions(kernels, gotos))
    print("\n// The state behind a nonterminal.")
    print_table("inline constexpr std::int16_t k_gotos[k_state_count][k_nonterminal_count]",
                [[targets.get(n, 0) for n in NONTERMINALS] for targets in gotos])
    print("\n// Per rule: the nonterminal that it makes and how many symbols it takes.")
    print_table("inline constexpr std::uint8_t k_rules[][2]", zip(left_sides, lengths))
    print("// clang-format on\n")
    print("#endif")


if __name__ == "__main__":
    main()
