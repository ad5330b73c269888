// The word lists of the highlighter, each in the order in which its pattern tries the words.
#pragma once

#include <QStringView>

namespace kelm::words {

inline constexpr QStringView swiftKeywords[] = {
    u"import",
    u"class",
    u"struct",
    u"enum",
    u"protocol",
    u"extension",
    u"func",
    u"var",
    u"let",
    u"if",
    u"else",
    u"guard",
    u"switch",
    u"case",
    u"default",
    u"for",
    u"while",
    u"repeat",
    u"do",
    u"try",
    u"catch",
    u"throw",
    u"throws",
    u"rethrows",
    u"return",
    u"break",
    u"continue",
    u"fallthrough",
    u"in",
    u"where",
    u"is",
    u"as",
    u"nil",
    u"true",
    u"false",
    u"self",
    u"Self",
    u"super",
    u"init",
    u"deinit",
    u"get",
    u"set",
    u"willSet",
    u"didSet",
    u"subscript",
    u"static",
    u"override",
    u"final",
    u"private",
    u"fileprivate",
    u"internal",
    u"public",
    u"open",
    u"lazy",
    u"weak",
    u"unowned",
    u"mutating",
    u"nonmutating",
    u"convenience",
    u"required",
    u"optional",
    u"some",
    u"any",
    u"async",
    u"await",
    u"@main",
    u"@State",
    u"@Binding",
    u"@Published",
    u"@ObservedObject",
    u"@StateObject",
    u"@Environment",
    u"@escaping",
    u"@autoclosure",
    u"@available",
    u"@objc",
    u"@discardableResult",
};

inline constexpr QStringView swiftTypes[] = {
    u"String",
    u"Int",
    u"Double",
    u"Float",
    u"Bool",
    u"Array",
    u"Dictionary",
    u"Set",
    u"Optional",
    u"Any",
    u"AnyObject",
    u"Void",
    u"Never",
    u"Result",
    u"Error",
    u"Codable",
    u"Hashable",
    u"Equatable",
    u"View",
    u"Text",
    u"Button",
    u"VStack",
    u"HStack",
    u"ZStack",
    u"List",
    u"ForEach",
    u"NavigationView",
    u"NSView",
    u"NSViewController",
    u"NSWindow",
    u"URL",
    u"Data",
    u"Date",
    u"UUID",
};

inline constexpr QStringView pythonKeywords[] = {
    u"and",    u"as",   u"assert", u"async",  u"await",    u"break", u"class", u"continue", u"def",
    u"del",    u"elif", u"else",   u"except", u"finally",  u"for",   u"from",  u"global",   u"if",
    u"import", u"in",   u"is",     u"lambda", u"nonlocal", u"not",   u"or",    u"pass",     u"raise",
    u"return", u"try",  u"while",  u"with",   u"yield",    u"True",  u"False", u"None",
};

inline constexpr QStringView pythonBuiltins[] = {
    u"print", u"len",  u"range",  u"str",    u"int",        u"float",   u"list",    u"dict",    u"set",
    u"tuple", u"open", u"input",  u"type",   u"isinstance", u"hasattr", u"getattr", u"setattr", u"enumerate",
    u"zip",   u"map",  u"filter", u"sorted", u"reversed",   u"sum",     u"min",     u"max",     u"abs",
};

inline constexpr QStringView javaScriptKeywords[] = {
    u"break", u"case",       u"catch",  u"class",   u"const",   u"continue",  u"debugger", u"default",  u"delete",
    u"do",    u"else",       u"export", u"extends", u"finally", u"for",       u"function", u"if",       u"import",
    u"in",    u"instanceof", u"let",    u"new",     u"return",  u"static",    u"super",    u"switch",   u"this",
    u"throw", u"try",        u"typeof", u"var",     u"void",    u"while",     u"with",     u"yield",    u"async",
    u"await", u"of",         u"true",   u"false",   u"null",    u"undefined", u"NaN",      u"Infinity",
};

inline constexpr QStringView shellKeywords[] = {
    u"if",    u"then",     u"else",   u"elif",     u"fi",      u"case",  u"esac",   u"for",      u"while",
    u"until", u"do",       u"done",   u"function", u"return",  u"exit",  u"break",  u"continue", u"export",
    u"local", u"readonly", u"source", u"alias",    u"unalias", u"echo",  u"printf", u"read",     u"cd",
    u"pwd",   u"ls",       u"cp",     u"mv",       u"rm",      u"mkdir", u"rmdir",  u"touch",    u"cat",
    u"grep",  u"sed",      u"awk",    u"find",     u"xargs",
};

inline constexpr QStringView goKeywords[] = {
    u"break",       u"case",    u"chan",  u"const",  u"continue", u"default", u"defer",  u"else",
    u"fallthrough", u"for",     u"func",  u"go",     u"goto",     u"if",      u"import", u"interface",
    u"map",         u"package", u"range", u"return", u"select",   u"struct",  u"switch", u"type",
    u"var",         u"true",    u"false", u"nil",    u"iota",
};

inline constexpr QStringView goTypes[] = {
    u"bool",  u"byte",  u"complex64", u"complex128", u"error", u"float32", u"float64", u"int",    u"int8",   u"int16",
    u"int32", u"int64", u"rune",      u"string",     u"uint",  u"uint8",   u"uint16",  u"uint32", u"uint64", u"uintptr",
};

inline constexpr QStringView rustKeywords[] = {
    u"as",     u"async", u"await", u"break", u"const",  u"continue", u"crate", u"dyn",   u"else",   u"enum",
    u"extern", u"false", u"fn",    u"for",   u"if",     u"impl",     u"in",    u"let",   u"loop",   u"match",
    u"mod",    u"move",  u"mut",   u"pub",   u"ref",    u"return",   u"self",  u"Self",  u"static", u"struct",
    u"super",  u"trait", u"true",  u"type",  u"unsafe", u"use",      u"where", u"while",
};

inline constexpr QStringView rustTypes[] = {
    u"bool", u"char", u"f32", u"f64",  u"i8",    u"i16",    u"i32", u"i64",    u"i128",   u"isize", u"str", u"u8",
    u"u16",  u"u32",  u"u64", u"u128", u"usize", u"String", u"Vec", u"Option", u"Result", u"Box",   u"Rc",  u"Arc",
};

} // namespace kelm::words
