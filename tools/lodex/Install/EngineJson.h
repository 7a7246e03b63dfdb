// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/** The deepest nesting of objects and lists a plug-in descriptor may have (the engine's own are 4 deep). */
inline constexpr std::size_t LodexMaxDescriptorDepth = 256;

struct FEngineJsonMember;

/**
 * A JSON value read the way the engine reads JSON files (Runtime/Json's TJsonReader), with where it lies in the
 * text, so that a change can be made to the text itself and every other byte kept.
 */
struct FEngineJsonValue
{
	enum class EKind
	{
		Object,
		Array,
		String,
		Number,
		Boolean,
		Null,
	};

	EKind Kind = EKind::Null;
	/** The value's first byte, and the byte just past it. */
	std::size_t Begin = 0;
	std::size_t End = 0;
	/** A string's text, its escapes decoded (UTF-8). */
	std::string Text;
	/**
	 * An object's members in the order written, a key written twice included; a list's elements. Kept for the
	 * first three levels (the root, its values, and theirs); deeper values are checked and left empty.
	 */
	std::vector<FEngineJsonMember> Members;

	/**
	 * The object's member of that name, as the engine finds it: its object keeps its fields in a map whose keys
	 * are compared ignoring case, so the last member whose key matches ignoring case is the one it sees. Null
	 * when there is none, or this is not an object.
	 */
	const FEngineJsonMember* FindMember(const std::string& Key) const;

	/** "object", "array", "string", "number", "boolean", "null". */
	const char* KindName() const;
};

/** A member of an object, or an element of a list (Key empty, KeyAt where the element starts). */
struct FEngineJsonMember
{
	std::string Key;
	std::size_t KeyAt = 0;
	FEngineJsonValue Value;
};

/**
 * Reads JSON text as the engine does, which is more than strict JSON: a comma after a list's last element
 * (`[1, 2,]`), the words `true`, `false` and `null` in any case (`True`, `NULL`), and control characters as they
 * are inside strings (a tab, a line break). As strictly as the engine, it refuses a comma after an object's last
 * member, numbers that are not JSON numbers, escapes other than JSON's, and anything after the root, which must be
 * an object or a list. It also refuses what the engine could not read as text: a NUL byte or bytes that are not
 * UTF-8 (after an optional byte-order mark), and nesting deeper than LodexMaxDescriptorDepth.
 *
 * On failure returns false with OutError set to "SOURCE:LINE:COLUMN: not valid JSON: REASON" (columns in
 * characters), or for the nesting "SOURCE:LINE:COLUMN: nested deeper than 256 levels, the most lodex reads".
 */
bool ReadEngineJson(
	const std::string& Text, const std::string& SourceName, FEngineJsonValue& Out, std::string& OutError);
