// A queue of letters to be printed, "first in, first out".
/* The press is slow:
   one letter a second. */
use std::collections::VecDeque;
use std::rc::Rc;

const LIMIT: usize = 64;
static GREETING: &'static str = "hello, \"printer\"\n";
const RAW: &str = r#"a "raw" text with \ and // no comment"#;
const RATIO: f64 = 1.618;
const MASK: u8 = 0xff;

#[derive(Debug, Clone)]
pub enum Letter {
    Small(char),
    Large { sign: char, size: u32 },
}

pub trait Press {
    fn print(&mut self, letter: &Letter) -> Result<bool, String>;
}

pub struct Queue<'a, T: Press + 'a> {
    letters: VecDeque<Letter>,
    press: &'a mut T,
    names: Vec<Box<dyn Fn(i64) -> Option<Rc<str>>>>,
}

impl<'a, T> Queue<'a, T>
where
    T: Press,
{
    pub fn new(press: &'a mut T) -> Self {
        Self { letters: VecDeque::with_capacity(LIMIT), press, names: vec![] }
    }

    pub async fn run(&mut self) -> Result<(), String> {
        while let Some(letter) = self.letters.pop_front() {
            match letter {
                Letter::Small('a') | Letter::Small('\'') => continue,
                Letter::Large { size, .. } if size > 100 => break,
                ref other => {
                    if !self.press.print(other)? {
                        return Err(format!("stuck at {:?} after {} of {}", other, 1, 2.5));
                    }
                }
            }
        }
        'outer: loop {
            for i in 0..10 {
                if i as f32 > 4. { break 'outer; } else { println!("{}", i); }
            }
        }
        assert_eq!(GREETING.len(), 17);
        unsafe { std::ptr::null::<i8>() };
        Ok(())
    }
}

mod tests {
    use super::*;
    extern crate alloc;
    type Name = Option<String>;

    fn korean() -> &'static str {
        let text = "활자 🖨️";
        let moved = move || { true };
        debug_assert!(moved() != false);
        text
    }
}
