// Copyright Lodex contributors.
#include "LintSarif.h"

#include "Cli/LodexCli.h"
#include "LintCommand.h"

#include <nlohmann/json.hpp>

#include <map>
#include <tuple>

namespace
{
	using FSarifJson = nlohmann::ordered_json;

	/** Where the tool's documentation lives, as code scanning links it. */
	constexpr const char* LodexInformationUri = "https://github.com/lodex/lodex/blob/main/docs/lodex.md";

	const char* SarifLevel(ELodexLintSeverity Severity)
	{
		return Severity == ELodexLintSeverity::Error  ? "error"
			: Severity == ELodexLintSeverity::Warning ? "warning"
													  : "note";
	}

	/** "no-match" as a SARIF rule name: "NoMatch". */
	std::string SarifRuleName(const std::string& Id)
	{
		std::string Name;
		bool bUpper = true;
		for (const char Char : Id)
		{
			if (Char == '-')
			{
				bUpper = true;
				continue;
			}
			Name += bUpper && Char >= 'a' && Char <= 'z' ? static_cast<char>(Char - 'a' + 'A') : Char;
			bUpper = false;
		}
		return Name;
	}

	/** A relative path as a URI reference: every byte but the unreserved ones and '/' percent-encoded. */
	std::string SarifUri(const std::string& Path)
	{
		static const char Hex[] = "0123456789ABCDEF";
		std::string Uri;
		for (const char Char : Path)
		{
			const unsigned char Byte = static_cast<unsigned char>(Char);
			if ((Byte >= 'a' && Byte <= 'z') || (Byte >= 'A' && Byte <= 'Z') || (Byte >= '0' && Byte <= '9') ||
				Char == '-' || Char == '.' || Char == '_' || Char == '~' || Char == '/')
			{
				Uri += Char;
			}
			else
			{
				Uri += std::string("%") + Hex[Byte >> 4] + Hex[Byte & 15];
			}
		}
		return Uri;
	}

	FSarifJson SarifRegion(std::size_t Line, std::size_t Column, std::size_t EndLine, std::size_t EndColumn)
	{
		FSarifJson Region;
		Region["startLine"] = Line;
		Region["startColumn"] = Column;
		Region["endLine"] = EndLine;
		Region["endColumn"] = EndColumn;
		return Region;
	}

	FSarifJson SarifRegion(const FLodexLintRegion& Region)
	{
		return SarifRegion(Region.Line, Region.Utf16Column, Region.EndLine, Region.Utf16EndColumn);
	}

	/** FNV-1a, 64 bits, as 16 hexadecimal digits. */
	std::string SarifHash(const std::string& Text)
	{
		std::uint64_t Hash = 14695981039346656037ull;
		for (const char Char : Text)
		{
			Hash = (Hash ^ static_cast<unsigned char>(Char)) * 1099511628211ull;
		}
		static const char Hex[] = "0123456789abcdef";
		std::string Out(16, '0');
		for (std::size_t Digit = 16; Digit-- > 0; Hash >>= 4)
		{
			Out[Digit] = Hex[Hash & 15];
		}
		return Out;
	}

	FSarifJson SarifRules()
	{
		FSarifJson Rules = FSarifJson::array();
		for (const FLodexLintRule& Rule : GetLodexLintRules())
		{
			FSarifJson Item;
			Item["id"] = Rule.Id;
			Item["name"] = SarifRuleName(Rule.Id);
			Item["shortDescription"]["text"] = Rule.Summary;
			Item["fullDescription"]["text"] = Rule.Help;
			Item["help"]["text"] = Rule.Help;
			Item["help"]["markdown"] = Rule.Help;
			Item["defaultConfiguration"]["level"] = SarifLevel(Rule.Severity);
			Rules.push_back(std::move(Item));
		}
		return Rules;
	}

	std::size_t SarifRuleIndex(const std::string& Id)
	{
		std::size_t Index = 0;
		for (const FLodexLintRule& Rule : GetLodexLintRules())
		{
			if (Id == Rule.Id)
			{
				return Index;
			}
			++Index;
		}
		return Index;
	}
}

std::string FormatLintReportSarif(const FLodexLintReport& Report, const FLodexLintFormatOptions& Options)
{
	FSarifJson Results = FSarifJson::array();
	// The fingerprint names the finding by what it is about, not by where: its file, rule, Lodestring, call and
	// level, and how many such findings come before it in the file.
	std::map<std::string, std::size_t> Seen;
	for (const FLodexLintDiagnostic& Diagnostic : Report.Diagnostics)
	{
		const std::string Uri = SarifUri(GetLintRelativePath(Diagnostic.File, Options.Root));
		FSarifJson Result;
		Result["ruleId"] = Diagnostic.Rule;
		Result["ruleIndex"] = SarifRuleIndex(Diagnostic.Rule);
		Result["level"] = SarifLevel(Diagnostic.Severity);
		std::string Message = GetLintMessageWithSuggestion(Diagnostic);
		for (const std::string& Note : Diagnostic.Notes)
		{
			Message += "\n" + Note;
		}
		Result["message"]["text"] = Message;
		FSarifJson Location;
		Location["physicalLocation"]["artifactLocation"]["uri"] = Uri;
		Location["physicalLocation"]["region"] = SarifRegion(Diagnostic.Region);
		Result["locations"] = FSarifJson::array({std::move(Location)});
		const std::string Key = Uri + '\n' + Diagnostic.Rule + '\n' + Diagnostic.Lodestring + '\n' + Diagnostic.Method +
			'\n' + Diagnostic.Level;
		Result["partialFingerprints"]["lodexFinding/v1"] = SarifHash(Key) + ":" + std::to_string(++Seen[Key]);
		if (!Diagnostic.FixText.empty())
		{
			FSarifJson Replacement;
			Replacement["deletedRegion"] = SarifRegion(Diagnostic.FixRegion);
			Replacement["insertedContent"]["text"] = Diagnostic.FixText;
			FSarifJson Change;
			Change["artifactLocation"]["uri"] = Uri;
			Change["replacements"] = FSarifJson::array({std::move(Replacement)});
			FSarifJson Fix;
			Fix["description"]["text"] = "Use " + Diagnostic.Suggestion;
			Fix["artifactChanges"] = FSarifJson::array({std::move(Change)});
			Result["fixes"] = FSarifJson::array({std::move(Fix)});
		}
		Results.push_back(std::move(Result));
	}
	FSarifJson Driver;
	Driver["name"] = "lodex";
	Driver["version"] = LodexVersion;
	Driver["informationUri"] = LodexInformationUri;
	Driver["rules"] = SarifRules();
	FSarifJson Run;
	Run["tool"]["driver"] = std::move(Driver);
	Run["columnKind"] = "utf16CodeUnits";
	Run["results"] = std::move(Results);
	FSarifJson Log;
	Log["$schema"] = "https://json.schemastore.org/sarif-2.1.0.json";
	Log["version"] = "2.1.0";
	Log["runs"] = FSarifJson::array({std::move(Run)});
	// A path or locator that is not UTF-8 is shown with U+FFFD where its bytes are not text.
	return Log.dump(2, ' ', false, FSarifJson::error_handler_t::replace) + "\n";
}
