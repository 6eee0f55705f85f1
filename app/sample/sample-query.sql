select city, count(customer_no) as customers, sum(credit_limit) as credit
from customers
group by city
