// Copyright Lodex contributors.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/**
 * An object's tags, held once however many objects have them: every actor that takes its Blueprint class's default
 * tags shares that class's list rather than a copy of it, so memory grows with the actors, not with actors times the
 * length of their class's tags. Reads as a const list of strings; it is changed only as a whole.
 */
class FSharedTags
{
public:
	FSharedTags() = default;
	FSharedTags(std::vector<std::string> InTags)
		: Tags(std::make_shared<const std::vector<std::string>>(std::move(InTags)))
	{
	}
	FSharedTags(std::initializer_list<std::string> InTags)
		: FSharedTags(std::vector<std::string>(InTags))
	{
	}

	const std::vector<std::string>& Get() const { return Tags ? *Tags : EmptyList(); }
	operator const std::vector<std::string>&() const { return Get(); }

	std::vector<std::string>::const_iterator begin() const { return Get().begin(); }
	std::vector<std::string>::const_iterator end() const { return Get().end(); }
	bool empty() const { return Get().empty(); }
	std::size_t size() const { return Get().size(); }
	const std::string& operator[](std::size_t Index) const { return Get()[Index]; }

	/** Whether the two hold one list, not merely equal ones. */
	bool SharesWith(const FSharedTags& Other) const { return Tags != nullptr && Tags == Other.Tags; }

	friend bool operator==(const FSharedTags& Left, const FSharedTags& Right) { return Left.Get() == Right.Get(); }
	friend bool operator!=(const FSharedTags& Left, const FSharedTags& Right) { return !(Left == Right); }
	friend bool operator==(const FSharedTags& Left, const std::vector<std::string>& Right)
	{
		return Left.Get() == Right;
	}
	friend bool operator==(const std::vector<std::string>& Left, const FSharedTags& Right)
	{
		return Left == Right.Get();
	}

private:
	static const std::vector<std::string>& EmptyList()
	{
		static const std::vector<std::string> Empty;
		return Empty;
	}

	std::shared_ptr<const std::vector<std::string>> Tags;
};
