//! rust_decimal over arrays, for the benchmark of decimals: each call goes through all operands, so
//! that the way from one language to the other is paid once. Numbers are 16 bytes that the caller
//! only hands back; their mantissas have 96 bits, 28 digits.
use rust_decimal::prelude::*;
use std::hint::black_box;
use std::io::Write;
use std::slice::{from_raw_parts, from_raw_parts_mut};

const _: () = assert!(std::mem::size_of::<Decimal>() == 16 && std::mem::align_of::<Decimal>() <= 8);

#[repr(C)]
pub struct Text {
    start: *const u8,
    size: usize,
}

unsafe fn each<F: Fn(Decimal, Decimal) -> Decimal>(
    left: *const Decimal, right: *const Decimal, results: *mut Decimal, count: usize, work: F,
) {
    let (left, right) = (from_raw_parts(left, count), from_raw_parts(right, count));
    let results = from_raw_parts_mut(results, count);
    for i in 0..count {
        results[i] = work(black_box(left[i]), black_box(right[i]));
    }
}

macro_rules! calculation {
    ($name:ident, $work:expr) => {
        #[no_mangle]
        pub unsafe extern "C" fn $name(
            left: *const Decimal, right: *const Decimal, results: *mut Decimal, count: usize,
        ) {
            each(left, right, results, count, $work)
        }
    };
}

calculation!(rust_decimal_add, |left, right| left + right);
calculation!(rust_decimal_multiply, |left, right| left * right);
calculation!(rust_decimal_divide, |left, right| left / right);
calculation!(rust_decimal_round, |left, _| {
    left.round_dp_with_strategy(2, RoundingStrategy::MidpointAwayFromZero)
});

/// Texts that are decimals; others end the program.
#[no_mangle]
pub unsafe extern "C" fn rust_decimal_parse(texts: *const Text, results: *mut Decimal, count: usize) {
    for i in 0..count {
        let text = &*texts.add(i);
        let bytes = from_raw_parts(black_box(text.start), text.size);
        *results.add(i) = Decimal::from_str(std::str::from_utf8_unchecked(bytes)).unwrap();
    }
}

/// Writes a text of at most 64 characters; gives its length.
#[no_mangle]
pub unsafe extern "C" fn rust_decimal_print(number: *const Decimal, text: *mut u8) -> usize {
    let mut left: &mut [u8] = from_raw_parts_mut(text, 64);
    write!(left, "{}", *number).unwrap();
    64 - left.len()
}
