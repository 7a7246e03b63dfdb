// Copyright Lodex contributors.
// The engine loads a Level Instance's level as a package of its own (ULevelStreamingLevelInstance::LoadInstance),
// named after the instance: the names below are the ones the game's objects carry.
#include "LevelInstanceNames.h"

#include <cstdio>
#include <utility>

namespace
{
	constexpr std::uint64_t K0 = 0xc3a5c85c97cb3127ULL;
	constexpr std::uint64_t K1 = 0xb492b66fbe98f273ULL;
	constexpr std::uint64_t K2 = 0x9ae16a3b2f90404fULL;

	/** The hash reads its words little-endian, as the engine does on every platform it ships on. */
	std::uint64_t Fetch64(const unsigned char* At)
	{
		std::uint64_t Value = 0;
		for (int Byte = 7; Byte >= 0; --Byte)
		{
			Value = (Value << 8) | At[Byte];
		}
		return Value;
	}

	std::uint32_t Fetch32(const unsigned char* At)
	{
		return static_cast<std::uint32_t>(At[0]) | static_cast<std::uint32_t>(At[1]) << 8 |
			static_cast<std::uint32_t>(At[2]) << 16 | static_cast<std::uint32_t>(At[3]) << 24;
	}

	std::uint64_t Rotate(std::uint64_t Value, int Shift)
	{
		return Shift == 0 ? Value : ((Value >> Shift) | (Value << (64 - Shift)));
	}

	std::uint64_t ShiftMix(std::uint64_t Value)
	{
		return Value ^ (Value >> 47);
	}

	std::uint64_t SwapBytes(std::uint64_t Value)
	{
		std::uint64_t Swapped = 0;
		for (int Byte = 0; Byte < 8; ++Byte)
		{
			Swapped = (Swapped << 8) | ((Value >> (8 * Byte)) & 0xff);
		}
		return Swapped;
	}

	std::uint64_t HashLen16(std::uint64_t U, std::uint64_t V, std::uint64_t Mul)
	{
		std::uint64_t A = (U ^ V) * Mul;
		A ^= (A >> 47);
		std::uint64_t B = (V ^ A) * Mul;
		B ^= (B >> 47);
		return B * Mul;
	}

	std::uint64_t HashLen16(std::uint64_t U, std::uint64_t V)
	{
		return HashLen16(U, V, 0x9ddfea08eb382d69ULL);
	}

	std::uint64_t HashLen0To16(const unsigned char* S, std::size_t Len)
	{
		if (Len >= 8)
		{
			const std::uint64_t Mul = K2 + Len * 2;
			const std::uint64_t A = Fetch64(S) + K2;
			const std::uint64_t B = Fetch64(S + Len - 8);
			const std::uint64_t C = Rotate(B, 37) * Mul + A;
			const std::uint64_t D = (Rotate(A, 25) + B) * Mul;
			return HashLen16(C, D, Mul);
		}
		if (Len >= 4)
		{
			const std::uint64_t Mul = K2 + Len * 2;
			const std::uint64_t A = Fetch32(S);
			return HashLen16(Len + (A << 3), Fetch32(S + Len - 4), Mul);
		}
		if (Len > 0)
		{
			const std::uint32_t Y = static_cast<std::uint32_t>(S[0]) + (static_cast<std::uint32_t>(S[Len >> 1]) << 8);
			const std::uint32_t Z = static_cast<std::uint32_t>(Len) + (static_cast<std::uint32_t>(S[Len - 1]) << 2);
			return ShiftMix(Y * K2 ^ Z * K0) * K2;
		}
		return K2;
	}

	std::uint64_t HashLen17To32(const unsigned char* S, std::size_t Len)
	{
		const std::uint64_t Mul = K2 + Len * 2;
		const std::uint64_t A = Fetch64(S) * K1;
		const std::uint64_t B = Fetch64(S + 8);
		const std::uint64_t C = Fetch64(S + Len - 8) * Mul;
		const std::uint64_t D = Fetch64(S + Len - 16) * K2;
		return HashLen16(Rotate(A + B, 43) + Rotate(C, 30) + D, A + Rotate(B + K2, 18) + C, Mul);
	}

	std::uint64_t HashLen33To64(const unsigned char* S, std::size_t Len)
	{
		const std::uint64_t Mul = K2 + Len * 2;
		std::uint64_t A = Fetch64(S) * K2;
		std::uint64_t B = Fetch64(S + 8);
		const std::uint64_t C = Fetch64(S + Len - 24);
		const std::uint64_t D = Fetch64(S + Len - 32);
		const std::uint64_t E = Fetch64(S + 16) * K2;
		const std::uint64_t F = Fetch64(S + 24) * 9;
		const std::uint64_t G = Fetch64(S + Len - 8);
		const std::uint64_t H = Fetch64(S + Len - 16) * Mul;
		const std::uint64_t U = Rotate(A + G, 43) + (Rotate(B, 30) + C) * 9;
		const std::uint64_t V = ((A + G) ^ D) + F + 1;
		const std::uint64_t W = SwapBytes((U + V) * Mul) + H;
		const std::uint64_t X = Rotate(E + F, 42) + C;
		const std::uint64_t Y = (SwapBytes((V + W) * Mul) + G) * Mul;
		const std::uint64_t Z = E + F + C;
		A = SwapBytes((X + Z) * Mul + Y) + B;
		B = ShiftMix((Z + A) * Mul + D + H) * Mul;
		return B + X;
	}

	/** Two 64-bit halves: low, high. */
	using FHalves = std::pair<std::uint64_t, std::uint64_t>;

	FHalves WeakHashLen32WithSeeds(const unsigned char* S, std::uint64_t A, std::uint64_t B)
	{
		const std::uint64_t W = Fetch64(S);
		const std::uint64_t X = Fetch64(S + 8);
		const std::uint64_t Y = Fetch64(S + 16);
		const std::uint64_t Z = Fetch64(S + 24);
		A += W;
		B = Rotate(B + A + Z, 21);
		const std::uint64_t C = A;
		A += X;
		A += Y;
		B += Rotate(A, 44);
		return {A + Z, B + C};
	}
}

std::uint64_t LevelInstanceCityHash64(const unsigned char* S, std::size_t Len)
{
	if (Len <= 16)
	{
		return HashLen0To16(S, Len);
	}
	if (Len <= 32)
	{
		return HashLen17To32(S, Len);
	}
	if (Len <= 64)
	{
		return HashLen33To64(S, Len);
	}
	// Over 64 bytes: the end first, then 64-byte chunks, keeping 56 bytes of state.
	std::uint64_t X = Fetch64(S + Len - 40);
	std::uint64_t Y = Fetch64(S + Len - 16) + Fetch64(S + Len - 56);
	std::uint64_t Z = HashLen16(Fetch64(S + Len - 48) + Len, Fetch64(S + Len - 24));
	FHalves V = WeakHashLen32WithSeeds(S + Len - 64, Len, Z);
	FHalves W = WeakHashLen32WithSeeds(S + Len - 32, Y + K1, X);
	X = X * K1 + Fetch64(S);
	for (std::size_t Left = (Len - 1) & ~static_cast<std::size_t>(63); Left != 0; Left -= 64, S += 64)
	{
		X = Rotate(X + Y + V.first + Fetch64(S + 8), 37) * K1;
		Y = Rotate(Y + V.second + Fetch64(S + 48), 42) * K1;
		X ^= W.second;
		Y += V.first + Fetch64(S + 40);
		Z = Rotate(Z + W.first, 33) * K1;
		V = WeakHashLen32WithSeeds(S, V.second * K1, X + W.first);
		W = WeakHashLen32WithSeeds(S + 32, Z + W.second, Y + Fetch64(S + 16));
		std::swap(Z, X);
	}
	return HashLen16(HashLen16(V.first, W.first) + ShiftMix(Y) * K1 + Z, HashLen16(V.second, W.second) + X);
}

std::string LevelInstancePackageName(const std::string& WorldPackage, const std::vector<std::string>& ActorGuids)
{
	// Each FGuid as it lies in memory: its four 32-bit parts, each little-endian.
	std::vector<unsigned char> Bytes;
	Bytes.reserve(ActorGuids.size() * 16);
	for (const std::string& Guid : ActorGuids)
	{
		if (Guid.size() != 32)
		{
			return std::string();
		}
		for (std::size_t Part = 0; Part < 4; ++Part)
		{
			std::uint32_t Value = 0;
			for (std::size_t Digit = 0; Digit < 8; ++Digit)
			{
				const char Character = Guid[Part * 8 + Digit];
				const int Nibble = Character >= '0' && Character <= '9' ? Character - '0'
					: Character >= 'A' && Character <= 'F'              ? Character - 'A' + 10
																		: -1;
				if (Nibble < 0)
				{
					return std::string();
				}
				Value = (Value << 4) | static_cast<std::uint32_t>(Nibble);
			}
			for (int Byte = 0; Byte < 4; ++Byte)
			{
				Bytes.push_back(static_cast<unsigned char>(Value >> (8 * Byte)));
			}
		}
	}
	if (Bytes.empty())
	{
		return std::string();
	}
	char Hash[17];
	std::snprintf(Hash, sizeof(Hash), "%016llx",
		static_cast<unsigned long long>(LevelInstanceCityHash64(Bytes.data(), Bytes.size())));
	return "/Temp" + WorldPackage + "_LevelInstance_" + Hash + "_1";
}
