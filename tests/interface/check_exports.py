#!/usr/bin/env python3
"""Checks that a built Ostrel library exports exactly what its public headers
declare.

The declared set is read from the headers: every declaration marked with an
export macro (OSTREL_API, VORNEL_API). Functions are compared by their full
signature (qualified name, parameter types, const of members; return type as
well for template specialisations, which carry it in their symbol).

  required  free functions, explicit template instantiations, variables, and
            the out-of-line members of exported classes; for exported
            classes with virtual members also "vtable for X" and
            "typeinfo for X".
  allowed   the required set, plus what an exported class may add: members
            defined in its body, implicit special members, and
            "typeinfo name for X".

The check fails when a required symbol is missing or when the library exports
anything outside the allowed set.

The symbol source is a shared library (ELF, read with nm -D --defined-only;
or PE, read with objdump -p), or a saved output of one of those two commands
('-' reads it from standard input). Names are demangled with c++filt.
"""

import argparse
import glob
import os
import re
import subprocess
import sys

MACROS = ("OSTREL_API", "VORNEL_API")
# Tokens of a declaration that are no part of its symbol: the export macros
# and calling conventions.
IGNORED = set(MACROS) | {"VORNEL_STDCALL", "__stdcall", "__cdecl", "__thiscall"}

# ---------------------------------------------------------------------------
# Tokens
# ---------------------------------------------------------------------------

_SOURCE_RE = re.compile(
    r'"(?:\\.|[^"\\])*"'      # string literal
    r"|'(?:\\.|[^'\\])*'"     # character literal
    r"|//[^\n]*"              # line comment
    r"|/\*.*?\*/",            # block comment
    re.S)
# Operators of two or more characters, but not '>>' (two closing template
# argument lists).
_TOKEN_RE = re.compile(r'"(?:\\.|[^"\\])*"|::|\.\.\.|&&|->|<<=|>>=|[=!<>+\-*/%^&|]=|\+\+|--'
                       r'|\|\||<<|[A-Za-z_]\w*|\d\w*|\S')
# The standard string as the demangler spells it.
_STRING_RE = re.compile(r"std::(?:__cxx11::)?basic_string<char, std::char_traits<char>, "
                        r"std::allocator<char> ?>")

BUILTIN_WORDS = {"void", "bool", "char", "wchar_t", "char8_t", "char16_t", "char32_t",
                 "short", "int", "long", "signed", "unsigned", "float", "double"}
CV = ("const", "volatile")
SPECIFIERS = {"static", "virtual", "inline", "explicit", "extern", "friend", "constexpr",
              "consteval", "mutable", "register", "thread_local", "typename", "struct",
              "class", "enum", "union"}
KEYWORDS = BUILTIN_WORDS | set(CV) | SPECIFIERS | {"template", "operator", "noexcept",
                                                  "override", "final", "auto", "decltype"}

# Standard integer aliases, by data model (LP64: 64-bit ELF; ILP32: 32-bit ELF
# and PE; LLP64: 64-bit PE).
_STD_ALIASES = {
    "int8_t": "signed char", "uint8_t": "unsigned char",
    "int16_t": "short", "uint16_t": "unsigned short",
    "int32_t": "int", "uint32_t": "unsigned int",
}
_MODEL_ALIASES = {
    "LP64": {"int64_t": "long", "uint64_t": "unsigned long", "size_t": "unsigned long",
             "ptrdiff_t": "long", "intptr_t": "long", "uintptr_t": "unsigned long"},
    "ILP32": {"int64_t": "long long", "uint64_t": "unsigned long long",
              "size_t": "unsigned int", "ptrdiff_t": "int", "intptr_t": "int",
              "uintptr_t": "unsigned int"},
    "LLP64": {"int64_t": "long long", "uint64_t": "unsigned long long",
              "size_t": "unsigned long long", "ptrdiff_t": "long long",
              "intptr_t": "long long", "uintptr_t": "unsigned long long"},
}


def strip_source(text):
    """The header without comments and preprocessor lines."""
    text = _SOURCE_RE.sub(lambda m: m.group(0) if m.group(0)[0] in "\"'" else " ", text)
    text = re.sub(r"\\\n", " ", text)
    return "\n".join(line for line in text.split("\n") if not line.lstrip().startswith("#"))


def tokenize(text):
    return _TOKEN_RE.findall(text)


def is_word(tok):
    return bool(re.match(r"[A-Za-z_0-9]", tok))


def join(tokens):
    out = ""
    for tok in tokens:
        if tok == ",":
            out += ", "
            continue
        if out and is_word(tok) and (is_word(out[-1]) or out[-1] == ">"):
            out += " "
        out += tok
    return out


_CLOSE = {"(": ")", "[": "]", "{": "}", "<": ">"}


def match(tokens, i):
    """Index of the bracket closing tokens[i]."""
    opener, closer, depth = tokens[i], _CLOSE[tokens[i]], 0
    for j in range(i, len(tokens)):
        if tokens[j] == opener:
            depth += 1
        elif tokens[j] == closer:
            depth -= 1
            if depth == 0:
                return j
    raise ValueError("unbalanced %r in: %s" % (opener, join(tokens)))


def split_top(tokens, sep=","):
    """tokens split at separators outside any brackets."""
    parts, cur, depth = [], [], 0
    for tok in tokens:
        if tok in _CLOSE:
            depth += 1
        elif tok in _CLOSE.values():
            depth -= 1
        if tok == sep and depth == 0:
            parts.append(cur)
            cur = []
        else:
            cur.append(tok)
    if cur or parts:
        parts.append(cur)
    return parts


# ---------------------------------------------------------------------------
# Types in canonical form: east const, builtin names spelled one way,
# aliases resolved, top-level cv dropped.
# ---------------------------------------------------------------------------

def builtin_name(words):
    longs = words.count("long")
    unsigned = "unsigned" in words
    base = [w for w in words if w not in ("long", "short", "signed", "unsigned", "int")]
    if base == ["char"]:
        return ("unsigned char" if unsigned else "signed char" if "signed" in words
                else "char").split()
    if base == ["double"]:
        return ["long", "double"] if longs else ["double"]
    if base:
        return base
    name = "short" if "short" in words else ["int", "long", "long long"][longs]
    return (("unsigned " if unsigned else "") + name).split()


class Types:
    def __init__(self, model):
        self.aliases = {}
        for name, spelled in dict(_STD_ALIASES, **_MODEL_ALIASES[model]).items():
            self.aliases[name] = self.aliases["std::" + name] = tokenize(spelled)

    def add_alias(self, name, tokens):
        self.aliases[name] = self.canonical(tokens)

    def name(self, tokens):
        """A (qualified, possibly templated) name with canonical template
        arguments."""
        out = []
        i = 0
        while i < len(tokens):
            if tokens[i] == "<" and out and out[-1] != "operator":
                end = match(tokens, i)
                args = [join(self.canonical(a)) for a in split_top(tokens[i + 1:end])]
                out.append("<" + ", ".join(args) + ">")
                i = end + 1
            else:
                out.append(tokens[i])
                i += 1
        return join(out)

    def canonical(self, tokens):
        """A type (no declarator name) as tokens in canonical form."""
        split = next((i for i, t in enumerate(tokens) if t in ("*", "&", "&&", "(", "[")),
                     len(tokens))
        head, rest = tokens[:split], tokens[split:]
        cvs = [t for t in CV if t in head]
        base = [t for t in head if t not in CV and t not in SPECIFIERS]
        if base and all(t in BUILTIN_WORDS for t in base):
            base = builtin_name(base)
        elif base:
            spelled = "".join(base)
            base = list(self.aliases[spelled]) if spelled in self.aliases else [self.name(base)]
        out = base + cvs
        i = 0
        while i < len(rest):
            if rest[i] == "(" and i > 0 and rest[i - 1] == ")":   # a function type's parameters
                end = match(rest, i)
                out += ["(" + ", ".join(self.parameters(rest[i + 1:end])) + ")"]
                i = end + 1
            else:
                out.append(rest[i])
                i += 1
        return out

    def parameter(self, tokens):
        """A parameter without name or default argument, in canonical form."""
        tokens = split_top(tokens, "=")[0] if "=" in tokens else list(tokens)
        # The declarator name: the last word outside brackets that follows a
        # type and is not part of a qualified name.
        depth = 0
        for i in range(len(tokens) - 1, -1, -1):
            tok = tokens[i]
            if tok in (")", "]", ">"):
                depth += 1
            elif tok in ("(", "[", "<"):
                depth -= 1
            elif depth == 0 and is_word(tok) and not tok[0].isdigit():
                if tok in KEYWORDS or (i > 0 and tokens[i - 1] == "::"):
                    break
                if any(t not in CV and t not in SPECIFIERS and is_word(t) for t in tokens[:i]):
                    del tokens[i]
                break
        # A name inside a function-pointer declarator: (*name)(...).
        for i in range(len(tokens) - 3):
            if tokens[i] == "(" and tokens[i + 1] in ("*", "&") and is_word(tokens[i + 2]):
                del tokens[i + 2]
                break
        # An array parameter is a pointer.
        if tokens[-1:] == ["]"] and tokens.count("[") == 1:
            tokens = tokens[:tokens.index("[")] + ["*"]
        out = self.canonical(tokens)
        while out and out[-1] in CV:            # top-level cv is not part of the type
            out.pop()
        return join(out)

    def parameters(self, tokens):
        params = [self.parameter(p) for p in split_top(tokens)]
        return [] if params == ["void"] else params

    def signature(self, head, params, quals, prefix=""):
        """Canonical signature from the tokens before the parameter list (return
        type and name), the parameter tokens and the trailing qualifiers. The
        return type is kept only for template specialisations."""
        start = len(head) - 1
        if "operator" in head:
            start = head.index("operator")
        else:
            if head[start] == ">":
                depth = 0
                while True:
                    depth += {">": 1, "<": -1}.get(head[start], 0)
                    if depth == 0:
                        break
                    start -= 1
                start -= 1
            if start > 0 and head[start - 1] == "~":
                start -= 1
        while start >= 2 and head[start - 1] == "::":
            start -= 2
        name = head[start:]
        sig = "%s%s(%s)%s" % (prefix, self.name(name), ", ".join(self.parameters(params)),
                            "".join(" " + q for q in quals))
        ret = [t for t in head[:start] if t not in SPECIFIERS]
        if ret and name[-1] == ">" and "operator" not in name:
            sig = join(self.canonical(ret)) + " " + sig
        return sig


# ---------------------------------------------------------------------------
# Headers
# ---------------------------------------------------------------------------

def declarations(tokens):
    """Splits tokens into declarations; yields (tokens, body, is_block) where
    body is the brace group of a definition (function body or class body)
    and is_block marks namespace and linkage blocks."""
    cur, i = [], 0
    while i < len(tokens):
        tok = tokens[i]
        if tok in ("(", "["):
            end = match(tokens, i)
            cur += tokens[i:end + 1]
            i = end + 1
            continue
        if tok == "{":
            end = match(tokens, i)
            body = tokens[i + 1:end]
            i = end + 1
            if cur[:1] == ["namespace"] or cur[:1] == ["extern"] and len(cur) == 2:
                yield cur, body, True
                cur = []
            elif "(" in cur and (not is_word(cur[-1]) or cur[-1] in (
                    "const", "volatile", "noexcept", "override", "final")):
                yield cur, body, False          # function definition
                cur = []
            else:
                cur += ["{"] + body + ["}"]     # class body or brace initialiser
            continue
        if tok == ";":
            if cur:
                yield cur, None, False
            cur = []
        elif tok == ":" and len(cur) == 1 and cur[0] in ("public", "protected", "private"):
            cur = []
        else:
            cur.append(tok)
        i += 1


class Declared:
    def __init__(self, types):
        self.types = types
        self.required = {}    # canonical signature -> where declared
        self.allowed = {}

    def add(self, sig, where, required=True):
        self.allowed[sig] = where
        if required:
            self.required[sig] = where

    def function(self, decl, scope, where, in_class=None, body=False):
        """Adds a function or variable declaration."""
        toks = [t for t in decl if t not in IGNORED]
        if "template" in toks[:2]:              # explicit instantiation
            toks = toks[toks.index("template") + 1:]
        inline = body or "inline" in toks or "constexpr" in toks
        prefix = in_class + "::" if in_class else scope
        # Parameter list: the first '(' outside template arguments that is
        # not part of an operator() name.
        depth, open_paren = 0, None
        for i, tok in enumerate(toks):
            if tok == "<" and i > 0 and is_word(toks[i - 1]) and toks[i - 1] != "operator":
                depth += 1
            elif tok == ">" and depth:
                depth -= 1
            elif tok in ("=", "{") and depth == 0:
                break
            elif tok == "(" and depth == 0 and not (i > 0 and toks[i - 1] == "operator"):
                open_paren = i
                break
        if open_paren is None:                  # a variable
            end = next((i for i, t in enumerate(toks) if t in ("=", "{")), len(toks))
            if in_class is None or "static" in toks:
                self.add(prefix + toks[end - 1], where, required=not inline)
            return
        close = match(toks, open_paren)
        trailing = toks[close + 1:]
        quals = [t for t in trailing if t in ("const", "volatile", "&", "&&")]
        if "=" in trailing and trailing[trailing.index("=") + 1:][:1] in (["default"],
                                                                        ["delete"], ["0"]):
            inline = True                       # not defined out of line
        sig = self.types.signature(toks[:open_paren], toks[open_paren + 1:close], quals,
                                   prefix)
        self.add(sig, where, required=not inline and "friend" not in toks)

    def klass(self, decl, body, scope, where):
        toks = [t for t in decl if t not in MACROS]
        name = scope + toks[1]
        polymorphic = "virtual" in body or "override" in body
        self.add("vtable for " + name, where, required=polymorphic)
        self.add("typeinfo for " + name, where, required=polymorphic)
        self.add("typeinfo name for " + name, where, required=False)
        # Implicit special members.
        for member in ("{0}()", "{0}({1} const&)", "{0}({1}&&)", "~{0}()",
                       "operator=({1} const&)", "operator=({1}&&)"):
            self.add(name + "::" + member.format(toks[1], name), where, required=False)
        for member, member_body, _ in declarations(body):
            if member[:1] and member[0] in ("class", "struct", "union", "enum", "using",
                                            "typedef", "friend", "static_assert", "template"):
                continue
            self.function(member, scope, "%s: %s" % (where.split(":")[0], join(member)),
                          in_class=name, body=member_body is not None)

    def read(self, tokens, path, scope=""):
        for decl, body, is_block in declarations(tokens):
            where = "%s: %s" % (os.path.basename(path), join(decl)[:60])
            if is_block:
                named = decl[0] == "namespace" and len(decl) > 1
                self.read(body, path, scope + "".join(decl[1:]) + "::" if named else scope)
                continue
            if decl[0] == "typedef" and "(" not in decl:
                self.types.add_alias(decl[-1], decl[1:-1])
            elif decl[0] == "using" and len(decl) > 3 and decl[2] == "=":
                self.types.add_alias(decl[1], decl[3:])
            if not any(m in decl for m in MACROS):
                continue
            try:
                self.exported(decl, body, scope, where)
            except (ValueError, IndexError) as e:
                raise SystemExit("cannot read the declaration %s (%s)" % (where, e))

    def exported(self, decl, body, scope, where):
        """Adds a declaration that carries an export macro."""
        if decl[0] in ("class", "struct") and decl[1] in MACROS:
            if "{" in decl:                     # not just a forward declaration
                start = decl.index("{")
                self.klass(decl[:start], decl[start + 1:match(decl, start)], scope, where)
        elif decl[:2] != ["template", "<"]:     # a primary template is no symbol
            self.function(decl, scope, where, body=body is not None)


def read_headers(paths, types):
    declared = Declared(types)
    for path in paths:
        with open(path, encoding="utf-8") as f:
            declared.read(tokenize(strip_source(f.read())), path)
    return declared


# ---------------------------------------------------------------------------
# Exported symbols
# ---------------------------------------------------------------------------

def read_symbol_source(source, nm, objdump):
    """(format, data model, raw symbol names) from a library or a saved dump."""
    if source == "-":
        text = sys.stdin.read()
    else:
        with open(source, "rb") as f:
            magic = f.read(5)
        if magic[:4] == b"\x7fELF":
            text = subprocess.run([nm, "-D", "--defined-only", source], check=True,
                                  capture_output=True, text=True).stdout
        elif magic[:2] == b"MZ":
            text = subprocess.run([objdump, "-p", source], check=True,
                                  capture_output=True, text=True).stdout
        else:
            with open(source, encoding="utf-8") as f:
                text = f.read()
    if "[Ordinal/Name Pointer] Table" in text:
        model = "LLP64" if re.search(r"file format pei-x86-64", text) else "ILP32"
        table = text.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
        names = re.findall(r"^\s*\[\s*\d+\]\s+(\S+)", table, re.M)
        return "pe", model, names
    names, width = [], 0
    for line in text.splitlines():
        fields = line.split()
        # AddressSanitizer adds an "__odr_asan.<name>" marker beside each
        # exported variable; it is no part of the interface.
        if len(fields) == 3 and fields[1] not in ("A", "U", "w", "v") \
                and not fields[2].startswith("__odr_asan."):
            names.append(fields[2].split("@")[0])
            width = len(fields[0])
    if not names:
        raise SystemExit("no exported symbols found in %s" % source)
    return "elf", "LP64" if width > 8 else "ILP32", names


def demangle(names, cxxfilt):
    out = subprocess.run([cxxfilt], input="\n".join(names) + "\n", check=True,
                         capture_output=True, text=True).stdout.splitlines()
    if len(out) != len(names):
        raise SystemExit("%s returned %d lines for %d names" % (cxxfilt, len(out), len(names)))
    return out


def canonical_symbol(demangled, types):
    """A demangled symbol in the form the declarations are reduced to."""
    special = re.match(r"(typeinfo name for|typeinfo for|vtable for) (.*)$", demangled)
    if special:
        return "%s %s" % (special.group(1), types.name(tokenize(special.group(2))))
    toks = tokenize(_STRING_RE.sub("std::string", demangled))
    quals = []
    while toks and toks[-1] in ("const", "volatile", "&", "&&"):
        quals.insert(0, toks.pop())
    if toks[-1:] != [")"]:
        return types.name(toks)                 # a variable
    depth = 0
    for open_paren in range(len(toks) - 1, -1, -1):
        depth += {")": 1, "(": -1}.get(toks[open_paren], 0)
        if depth == 0:
            break
    return types.signature(toks[:open_paren], toks[open_paren + 1:-1], quals)


# ---------------------------------------------------------------------------

def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("source", help="shared library, or saved nm -D / objdump -p output "
                        "('-' for standard input)")
    parser.add_argument("--headers", action="append", required=True,
                        help="a public header, or a directory of them (repeatable)")
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--objdump", default="objdump")
    parser.add_argument("--cxxfilt", default="c++filt")
    args = parser.parse_args()

    headers = []
    for path in args.headers:
        headers += sorted(glob.glob(os.path.join(path, "*.h"))) if os.path.isdir(path) else [path]
    fmt, model, names = read_symbol_source(args.source, args.nm, args.objdump)
    types = Types(model)
    declared = read_headers(headers, types)
    exported = {canonical_symbol(d, types): raw
                for raw, d in zip(names, demangle(names, args.cxxfilt))}

    missing = sorted(set(declared.required) - set(exported))
    extra = sorted(set(exported) - set(declared.allowed))
    for sig in missing:
        print("MISSING  %s   [declared in %s]" % (sig, declared.required[sig]))
    for sig in extra:
        print("EXTRA    %s   [%s]" % (sig, exported[sig]))
    print("%s (%s): %d symbols exported, %d required by %d headers, %d missing, %d extra"
          % (os.path.basename(args.source), fmt, len(exported), len(declared.required),
             len(headers), len(missing), len(extra)))
    return 1 if missing or extra else 0


if __name__ == "__main__":
    sys.exit(main())
