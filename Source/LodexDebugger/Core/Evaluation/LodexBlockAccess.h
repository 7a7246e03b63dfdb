// Copyright Lodex contributors.
#pragma once

#include "LodexEvaluatorBlock.h"

#include <atomic>
#include <cstdint>
#include <cstring>

#if !defined(__GNUC__) && !defined(__clang__) && defined(_MSC_VER)
#include <intrin.h>
#endif

/**
 * Ordered access to the evaluator block's plain fields, for both sides of the handshake.
 *
 * The block is a plain structure shared with a foreign runtime, so its fields cannot be `std::atomic`.
 * The two code words carry the ordering: a side that publishes writes its data first and then the code
 * word with release semantics; the other side reads the code word with acquire semantics and only then
 * the data. The pointer fields and `durationMs` are accessed as relaxed atomics, so that a panel that
 * reads a pointer while the evaluator replaces it on another thread sees one value or the other.
 *
 * On x86 every one of these is an ordinary load or store (the processor orders them already); on ARM
 * they become the load-acquire and store-release instructions that plain accesses would lack.
 */
namespace LodexBlock
{
#if defined(__GNUC__) || defined(__clang__)
	inline std::int32_t LoadAcquire(const std::int32_t& Word)
	{
		return __atomic_load_n(&Word, __ATOMIC_ACQUIRE);
	}

	inline void StoreRelease(std::int32_t& Word, std::int32_t Value)
	{
		__atomic_store_n(&Word, Value, __ATOMIC_RELEASE);
	}

	template<typename T>
	inline T* LoadPointer(T* const& Field)
	{
		return __atomic_load_n(&Field, __ATOMIC_RELAXED);
	}

	template<typename T>
	inline void StorePointer(T*& Field, T* Value)
	{
		__atomic_store_n(&Field, Value, __ATOMIC_RELAXED);
	}

	inline double LoadDouble(const double& Field)
	{
		double Value;
		__atomic_load(&Field, &Value, __ATOMIC_RELAXED);
		return Value;
	}

	inline void StoreDouble(double& Field, double Value)
	{
		__atomic_store(&Field, &Value, __ATOMIC_RELAXED);
	}
#elif defined(_MSC_VER)
#if defined(_M_IX86) || defined(_M_X64)
	// x86 and x64: aligned loads and stores are atomic and already ordered as acquire and release; the
	// volatile access and the compiler barrier keep the compiler from merging or moving them. The barrier is a
	// signal fence: a compiler-only barrier, as the deprecated _ReadWriteBarrier was, emitting no instruction.
	inline std::int32_t LoadAcquire(const std::int32_t& Word)
	{
		const std::int32_t Value = *static_cast<const volatile std::int32_t*>(&Word);
		std::atomic_signal_fence(std::memory_order_seq_cst);
		return Value;
	}

	inline void StoreRelease(std::int32_t& Word, std::int32_t Value)
	{
		std::atomic_signal_fence(std::memory_order_seq_cst);
		*static_cast<volatile std::int32_t*>(&Word) = Value;
	}

	template<typename T>
	inline T* LoadPointer(T* const& Field)
	{
		return *static_cast<T* const volatile*>(&Field);
	}

	template<typename T>
	inline void StorePointer(T*& Field, T* Value)
	{
		*static_cast<T* volatile*>(&Field) = Value;
	}

	inline double LoadDouble(const double& Field)
	{
		return *static_cast<const volatile double*>(&Field);
	}

	inline void StoreDouble(double& Field, double Value)
	{
		*static_cast<volatile double*>(&Field) = Value;
	}
#else
	// Other targets (ARM64): the interlocked operations are full barriers, stronger than needed.
	inline std::int32_t LoadAcquire(const std::int32_t& Word)
	{
		return static_cast<std::int32_t>(
			_InterlockedCompareExchange(reinterpret_cast<volatile long*>(const_cast<std::int32_t*>(&Word)), 0, 0));
	}

	inline void StoreRelease(std::int32_t& Word, std::int32_t Value)
	{
		_InterlockedExchange(reinterpret_cast<volatile long*>(&Word), static_cast<long>(Value));
	}

	template<typename T>
	inline T* LoadPointer(T* const& Field)
	{
		void* volatile* const Target = static_cast<void* volatile*>(static_cast<void*>(const_cast<T**>(&Field)));
		return static_cast<T*>(_InterlockedCompareExchangePointer(Target, nullptr, nullptr));
	}

	template<typename T>
	inline void StorePointer(T*& Field, T* Value)
	{
		void* volatile* const Target = static_cast<void* volatile*>(static_cast<void*>(&Field));
		_InterlockedExchangePointer(Target, const_cast<void*>(static_cast<const void*>(Value)));
	}

	inline double LoadDouble(const double& Field)
	{
		const __int64 Bits =
			_InterlockedCompareExchange64(reinterpret_cast<volatile __int64*>(const_cast<double*>(&Field)), 0, 0);
		double Value;
		std::memcpy(&Value, &Bits, sizeof(Value));
		return Value;
	}

	inline void StoreDouble(double& Field, double Value)
	{
		__int64 Bits;
		std::memcpy(&Bits, &Value, sizeof(Bits));
		_InterlockedExchange64(reinterpret_cast<volatile __int64*>(&Field), Bits);
	}
#endif
#else
#error "The evaluator block needs GCC, Clang or MSVC atomic intrinsics"
#endif

	/** The evaluator's state, read with acquire: the fields it published before it are visible after. */
	inline std::int32_t LoadStatus(const FLodexEvaluatorBlock& Block)
	{
		return LoadAcquire(Block.status);
	}

	/** The pending request, read with acquire: the path written before it is visible after. */
	inline std::int32_t LoadCommand(const FLodexEvaluatorBlock& Block)
	{
		return LoadAcquire(Block.command);
	}

	/** Writes `status` with release: everything written before it is published with it. */
	inline void StoreStatus(FLodexEvaluatorBlock& Block, std::int32_t Value)
	{
		StoreRelease(Block.status, Value);
	}

	/** Writes `command` with release: the path written before it is published with it. */
	inline void StoreCommand(FLodexEvaluatorBlock& Block, std::int32_t Value)
	{
		StoreRelease(Block.command, Value);
	}
}
